#include "documents/page_threads.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace {

constexpr std::size_t kLongestNote = 200;  // letters of what is told of a thread or a post
constexpr std::size_t kShortestWords = 12;
constexpr std::size_t kLongestOfSigner = 60;
// More than any page has: of the names of posts, of the elements around the words of one.
constexpr int kMostKin = 32;
constexpr int kMostLevels = 32;

class Thread {
public:
    Thread(std::vector<PagePart>& parts, std::size_t article, PageTitle title)
        : parts_(parts), article_(article), title_(title) {}

    void LeaveOut() {
        SumUpPlain();
        FindBodies();
        if (bodies_.size() < 2)
            return;
        isBody_.assign(parts_.size(), false);
        for (const std::size_t body : bodies_)
            isBody_[body] = true;
        SumUpHolds(true);
        FindPosts();
        if (!IsWrittenByPeople())
            return;
        SumUpHolds(false);
        for (Post& post : posts_)
            KeepWriter(post);
        LeaveOutBeside();
    }

private:
    using Parts = std::vector<std::size_t>;

    // What a part holds, with what stands in its children.
    struct Holds {
        std::size_t bodies = 0;
        bool time = false;
        bool writer = false;
        bool heading = false;
        bool title = false;
        bool isInPost = false;
        bool isLikePost = false;  // one that is written otherwise than the others
    };
    // What one has written, and that with all that belongs to it.
    struct Post {
        std::size_t body;
        std::size_t whole;
        bool hasWriter;  // told before the body
    };

    std::size_t ProseOf(const Parts& parts) const {
        std::size_t prose = 0;
        for (const std::size_t i : parts)
            prose += prose_[i];
        return prose;
    }
    std::size_t TextOf(const Parts& parts) const {
        std::size_t text = 0;
        for (const std::size_t i : parts)
            text += parts_[i].text;
        return text;
    }

    // Of each kin that calls itself posts, answers within others too.
    std::map<std::size_t, Parts> NamedPosts() const {
        std::map<std::size_t, Parts> posts;
        for (std::size_t i = article_ + 1; i < parts_[article_].end; ++i) {
            const PagePart& part = parts_[i];
            if (part.isLeftOut) {
                i = part.end - 1;
            } else if (part.postName == PostName::kPost && part.kin != 0 && part.text > 0) {
                posts[part.kin].push_back(i);
            }
        }
        return posts;
    }

    // What is no label: neither links nor what calls itself a date, a name, a button.
    void SumUpPlain() {
        plain_.assign(parts_.size(), 0);
        prose_.assign(parts_.size(), 0);
        std::vector<std::size_t> below(parts_.size());  // letters of prose of what parts hold
        for (std::size_t i = parts_[article_].end; i-- > article_;) {
            const PagePart& part = parts_[i];
            if (part.isLeftOut)
                continue;
            const std::size_t line = part.prose - below[i];
            const bool isSigned = part.namesWriter && line <= kLongestNote;
            prose_[i] += isSigned ? 0 : line;
            plain_[i] += part.ownText;
            if (isSigned || part.hasTime || part.hasButtons || part.isHeading ||
                part.postName == PostName::kBeside || part.sign != PartSign::kNone ||
                part.linked * 2 > part.text)
                plain_[i] = 0;
            if (i == article_)
                break;
            below[part.parent] += part.prose;
            prose_[part.parent] += prose_[i];
            plain_[part.parent] += plain_[i];
        }
    }

    // Of posts within posts, such as an article in an item of a list, those that tell most.
    void FindBodies() {
        const std::size_t all = prose_[article_];
        std::size_t text = 0;
        int tried = 0;
        for (auto& [kin, posts] : NamedPosts()) {
            const std::size_t prose = ProseOf(posts);
            if (posts.size() < 2 || prose == 0 || prose * 2 < all || ++tried > kMostKin)
                continue;
            FindHolders(posts);
            for (int level = 0; level < kMostLevels && GoDown(posts);)
                ++level;
            KeepOutermost(posts);
            if (text == 0 || TextOf(posts) < text) {
                text = TextOf(posts);
                bodies_ = posts;
            }
        }
        if (bodies_.empty())
            return;
        // The first post may be written otherwise than the answers to it.
        const std::size_t kin = parts_[bodies_.front()].kin;
        Parts more;
        for (std::size_t i = article_ + 1; kin != 0 && i < parts_[article_].end; ++i) {
            const auto next = std::ranges::lower_bound(bodies_, i);
            const bool holdsPosts = next != bodies_.end() && *next < parts_[i].end;
            if (holdsPosts && *next != i)
                continue;
            if (parts_[i].kin == kin && !parts_[i].isLeftOut && !holdsPosts)
                more.push_back(i);
            if (parts_[i].isLeftOut || parts_[i].kin == kin || holdsPosts)
                i = parts_[i].end - 1;
        }
        bodies_.insert(bodies_.end(), more.begin(), more.end());
        std::ranges::sort(bodies_);
        if (ProseOf(bodies_) * 5 < all * 3)
            bodies_.clear();
    }

    void FindHolders(const Parts& posts) {
        holdsPost_.assign(parts_.size(), false);
        for (const std::size_t post : posts)
            for (std::size_t i = post; !holdsPost_[i]; i = parts_[i].parent)
                holdsPost_[i] = true;
    }
    void KeepOutermost(Parts& posts) const {
        std::ranges::sort(posts);
        Parts outermost;
        for (const std::size_t post : posts)
            if (outermost.empty() || post >= parts_[outermost.back()].end)
                outermost.push_back(post);
        posts = outermost;
    }

    // To the one child that holds nearly all that each post says, unless something of its words may
    // stand beside that one. Some, such as deleted ones, may be made otherwise.
    bool GoDown(Parts& posts) const {
        const auto hasMore = [this](std::size_t a, std::size_t b) {
            return OwnProse(a) < OwnProse(b);
        };
        const std::size_t longest = *std::ranges::max_element(posts, hasMore);
        const Parts children = ChildrenOf(longest);
        if (children.empty())
            return false;
        const PagePart& like = parts_[*std::ranges::max_element(children, hasMore)];
        Parts below;
        std::size_t others = 0;
        std::size_t proseAbove = 0;
        std::size_t proseBelow = 0;
        for (const std::size_t post : posts) {
            const std::size_t child =
                parts_[post].ownText > parts_[post].ownLinked || !like.isContainer
                    ? 0
                    : ChildLike(like, ChildrenOf(post));
            others += child == 0 ? 1 : 0;
            below.push_back(child == 0 ? post : child);
            proseAbove += OwnProse(post);
            proseBelow += OwnProse(below.back());
        }
        if (others * 3 > posts.size() || proseBelow * 10 < proseAbove * 9)
            return false;
        posts = below;
        return true;
    }
    // Without that of answers within.
    std::size_t OwnProse(std::size_t part) const {
        std::size_t prose = prose_[part];
        for (std::size_t i = part + 1; i < parts_[part].end; i = parts_[i].end)
            if (holdsPost_[i] && !parts_[i].isLeftOut)
                prose -= std::min(prose, prose_[i]);
        return prose;
    }
    Parts ChildrenOf(std::size_t part) const {
        Parts children;
        for (std::size_t i = part + 1; i < parts_[part].end; i = parts_[i].end)
            if (!parts_[i].isLeftOut && parts_[i].text > 0 && !holdsPost_[i])
                children.push_back(i);
        return children;
    }
    std::size_t ChildLike(const PagePart& like, const Parts& children) const {
        Parts same;
        Parts kin;
        std::size_t plain = 0;
        for (const std::size_t i : children) {
            const PagePart& child = parts_[i];
            plain += plain_[i];
            if (child.classes == like.classes)
                same.push_back(i);
            if (child.kin == like.kin)
                kin.push_back(i);
        }
        const Parts& found = same.size() == 1 ? same : kin;
        if (found.size() != 1 || plain > plain_[found.front()])
            return 0;
        return found.front();
    }

    void SumUpHolds(bool withLeftOut) {
        holds_.assign(parts_.size(), {});
        for (std::size_t i = parts_[article_].end; i-- > article_ + 1;) {
            const PagePart& part = parts_[i];
            if (part.isLeftOut && !withLeftOut)
                continue;
            Holds& holds = holds_[i];
            Holds& parent = holds_[part.parent];
            holds.bodies += isBody_[i] ? 1 : 0;
            parent.bodies += holds.bodies;
            holds.title = holds.title || (i == title_.part && i != 0);
            parent.title = parent.title || holds.title;
            if (isBody_[i])
                continue;
            holds.time = holds.time || part.hasTime;
            holds.writer = holds.writer || part.namesWriter;
            holds.heading = holds.heading || (part.isHeading && !part.repeatsTitle);
            parent.time = parent.time || holds.time;
            parent.writer = parent.writer || holds.writer;
            parent.heading = parent.heading || holds.heading;
        }
        for (std::size_t i = article_ + 1; i < parts_[article_].end; ++i) {
            const Holds& parent = holds_[parts_[i].parent];
            Holds& holds = holds_[i];
            holds.isInPost = parent.isInPost || parent.bodies == 1;
            holds.isLikePost = parent.isLikePost ||
                               (holds.bodies == 0 && holds.writer && plain_[i] > kShortestWords);
        }
    }
    void FindPosts() {
        for (const std::size_t body : bodies_) {
            std::size_t whole = body;
            while (parts_[whole].parent != article_ && holds_[parts_[whole].parent].bodies == 1)
                whole = parts_[whole].parent;
            posts_.push_back({body, whole, false});
        }
        const std::size_t first = posts_.front().whole;
        for (std::size_t i = article_ + 1; i < first; ++i)
            isProseBefore_ =
                isProseBefore_ || (prose_[i] > 0 && parts_[i].end <= first && !IsLeftOut(i));
    }
    bool IsLeftOut(std::size_t part) const {
        for (std::size_t i = part; i != 0; i = parts_[i].parent)
            if (parts_[i].isLeftOut)
                return true;
        return false;
    }
    // Questions with answers in a manual are called as posts are, but nobody signs them.
    bool IsWrittenByPeople() {
        std::size_t written = 0;
        for (const Post& post : posts_) {
            written += holds_[post.whole].time || holds_[post.whole].writer ? 1 : 0;
            isSigned_ = isSigned_ || holds_[post.whole].writer;
        }
        return written * 2 >= posts_.size();
    }
    // Who speaks must be heard, though it stands among the labels. When none of these says so, it
    // may be the first.
    void KeepWriter(Post& post) {
        std::size_t unheard = 0;
        std::size_t heading = 0;
        std::size_t label = 0;
        std::size_t signer = 0;  // behind what names the writer in its first part
        for (std::size_t i = post.whole; i < post.body && !post.hasWriter; ++i) {
            const PagePart& part = parts_[i];
            if (part.namesWriter)
                signer = part.end;
            if (part.ownText == 0)
                continue;
            const bool isHeard = !IsLeftOut(i);
            const bool isWriter = i < signer;
            signer = 0;
            post.hasWriter = isHeard && isWriter;
            if (!isHeard && isWriter && part.ownText < kLongestOfSigner && unheard == 0)
                unheard = i;
            else if (isHeard && part.isHeading && !part.repeatsTitle)
                heading = i;
            else if (isHeard && label == 0 && !part.repeatsTitle)
                label = i;
            if (post.hasWriter)
                label = i;
        }
        if (!post.hasWriter && unheard != 0) {
            ReadAlone(unheard);
            label = unheard;
        }
        const bool isLabel = post.hasWriter || heading == 0;
        post.hasWriter = post.hasWriter || unheard != 0 || heading != 0;
        if (isLabel || unheard != 0)
            for (; label > post.whole; label = parts_[label].parent)
                holds_[label].writer = true;
    }
    // Of all that is left out with it.
    void ReadAlone(std::size_t part) {
        std::size_t top = part;
        for (std::size_t i = part; i != article_; i = parts_[i].parent)
            top = parts_[i].isLeftOut ? i : top;
        for (std::size_t i = part + 1; i < parts_[part].end; i = parts_[i].end)
            parts_[i].isLeftOut = true;
        for (std::size_t i = part; i != top; i = parts_[i].parent) {
            const std::size_t parent = parts_[i].parent;
            for (std::size_t k = parent + 1; k < parts_[parent].end; k = parts_[k].end)
                parts_[k].isLeftOut = k != i;
        }
        parts_[top].isLeftOut = false;
    }

    void LeaveOutBeside() {
        auto next = posts_.begin();
        const Post* behind = nullptr;
        for (std::size_t i = article_ + 1; i < parts_[article_].end;) {
            if (isBody_[i])
                behind = &*next++;
            else if (behind != nullptr && i >= parts_[behind->whole].end)
                behind = nullptr;
            const bool isTold = behind != nullptr && behind->hasWriter;
            parts_[i].isLeftOut = parts_[i].isLeftOut || IsBeside(i, isTold);
            i = parts_[i].isLeftOut || isBody_[i] ? parts_[i].end : i + 1;
        }
    }
    bool IsBeside(std::size_t i, bool isWriterTold) const {
        const PagePart& part = parts_[i];
        const Holds& holds = holds_[i];
        if (holds.bodies > 0 || holds.title || (part.text == 0 && !part.hasButtons))
            return false;
        const bool isWriter = holds.writer && !isWriterTold;
        if (part.postName == PostName::kBeside && part.text < kLongestNote &&
            (isSigned_ || !holds.isInPost))
            return !holds.isInPost || !isWriter;
        if (prose_[i] > 0 || (part.isInLine && parts_[part.parent].ownText > kLongestOfSigner))
            return false;
        // The news of a day are told by their hours.
        if (holds.isInPost ? holds.time && !isSigned_ : holds.isLikePost)
            return false;
        if (!holds.isInPost && i < posts_.front().whole)
            return !isProseBefore_ && (title_.isNamed || !holds.heading);
        if (!holds.isInPost && i > posts_.back().whole)
            return true;
        const bool isTime = holds.time || part.linked * 2 > part.text;
        return (isTime || (holds.isInPost && (part.kin != 0 || part.repeatsTitle))) &&
               (isWriterTold || !holds.writer) && !holds.heading;
    }

    std::vector<PagePart>& parts_;
    std::size_t article_;
    PageTitle title_;
    std::vector<std::size_t> plain_;  // letters, of all parts, as the next
    std::vector<std::size_t> prose_;
    Parts bodies_;                 // of the posts; in order, none in another
    std::vector<bool> holdsPost_;  // or is one, of those that are looked at
    std::vector<bool> isBody_;
    std::vector<Holds> holds_;
    std::vector<Post> posts_;
    bool isSigned_ = false;  // by those who wrote them
    bool isProseBefore_ = false;
};

}  // namespace

void LeaveOutAroundPosts(std::vector<PagePart>& parts, std::size_t article, PageTitle title) {
    Thread(parts, article, title).LeaveOut();
}
