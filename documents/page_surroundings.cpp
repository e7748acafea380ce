#include "documents/page_surroundings.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "documents/html_reader.h"
#include "documents/page_parts.h"
#include "documents/page_threads.h"

namespace {

// In letters.
constexpr std::size_t kLeastArticle = 200;
constexpr std::size_t kLongBlock = 250;  // what notices and teasers hardly have
constexpr std::size_t kLongPart = 800;
constexpr std::size_t kLongWay = 3;  // parts one within the other that name themselves

class Judge {
public:
    Judge(std::vector<PagePart> parts, PageTitle title)
        : parts_(std::move(parts)),
          title_(title.part),
          isTitleSure_(title.isSure),
          isTitleNamed_(title.isNamed) {}

    PageSurroundings Find() {
        const std::size_t words = parts_[0].words;
        LeaveOutWhere([this](std::size_t i) { return Holds(i, PartSign::kSurely); });
        const std::vector<bool> holdsPosts = HoldersOf(KinOfPosts());
        LeaveOutWhere([this, &holdsPosts](std::size_t i) {
            return Holds(i, PartSign::kMatter) && !holdsPosts[i];
        });
        LeaveOutBesidePosts();
        if (IsLeftOut(title_))
            title_ = 0;
        FindMatter();
        if (matter_ != 0 && !isTitleSure_)
            title_ = 0;
        article_ = title_ == 0 || IsIn(title_, matter_) ? matter_ : 0;
        FindPath();
        FindWhetherProseIsAbove();
        way_ = WayToText(0);
        LeaveOutWhere([this](std::size_t i) { return IsBesides(i) || IsAboveTitle(i); });
        PruneBesidePath();
        SumUp(parts_);
        PageSurroundings found;
        if (parts_[article_].text < kLeastArticle)
            return found;
        LeaveOutAroundPosts(parts_, article_, {title_, isTitleSure_, isTitleNamed_});
        SumUp(parts_);

        const PagePart& read = parts_[article_];
        found.words = words - std::min(words, read.words);
        if (article_ != 0)
            found.article = read.at;
        for (const PagePart& part : parts_)
            if (part.isLeftOut)
                found.leftOut.insert(part.at);
        return found;
    }

private:
    template <typename Test>
    void LeaveOutWhere(Test test) {
        for (std::size_t i = 1; i < parts_.size();) {
            if (parts_[i].isLeftOut || test(i)) {
                parts_[i].isLeftOut = true;
                i = parts_[i].end;
            } else {
                ++i;
            }
        }
        SumUp(parts_);
    }
    bool IsIn(std::size_t part, std::size_t whole) const {
        return part >= whole && part < parts_[whole].end;
    }
    bool IsLeftOut(std::size_t part) const {
        for (std::size_t i = part; i != 0; i = parts_[i].parent)
            if (parts_[i].isLeftOut)
                return true;
        return false;
    }
    bool HasTitle(std::size_t part) const { return title_ != 0 && IsIn(title_, part); }
    static bool IsLinks(const PagePart& part) { return part.linked * 10 > part.text * 3; }

    // By its sign alone, unless it holds what is most of the page.
    bool Holds(std::size_t i, PartSign sign) const {
        const PagePart& part = parts_[i];
        return part.sign == sign && !HasTitle(i) && part.prose * 2 <= parts_[0].prose &&
               (part.prose > 0 || part.text * 2 <= parts_[0].text);
    }

    // Of those of each kin that pass the test, the ones that stand in no other of them.
    template <typename Test, typename Take>
    void ForEachOutermost(Test isOne, Take take) const {
        std::map<std::size_t, std::size_t> ends;  // of the last one, for each kin
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            const PagePart& part = parts_[i];
            if (part.kin == 0 || !isOne(i) || IsLeftOut(i) || i < ends[part.kin])
                continue;
            ends[part.kin] = part.end;
            take(i);
        }
    }

    // What is called comments is the matter of a page that has no other, or of which one of them is
    // most, or that begins with one that is not called so: the posts of a thread.
    std::set<std::size_t> KinOfPosts() const {
        std::map<std::size_t, std::size_t> prose;
        std::set<std::size_t> posts;
        const std::size_t all = parts_[0].prose;
        const auto isComment = [this](std::size_t i) {
            return parts_[i].sign == PartSign::kMatter;
        };
        const Way first = WayToText(0, false);
        const bool isMostMatter = ProseOfMatter() * 2 >= all;
        ForEachOutermost(isComment, [&](std::size_t i) {
            const PagePart& part = parts_[i];
            const bool isFirst = prose[part.kin] == 0 && part.prose > 0;
            const std::size_t sum = prose[part.kin] += part.prose;
            const std::size_t others = all - std::min(all, sum);
            if (part.prose * 2 > all || (others * 2 <= all && others < kLongBlock) ||
                (isFirst &&
                 (AreAlike(WayToText(i), first) || (isMostMatter && AreSame(WayToText(i), first)))))
                posts.insert(part.kin);
        });
        return posts;
    }
    // To the longest text of a part.
    struct Way {
        std::vector<std::size_t> kin;  // of what holds it, from within, a few of them
        bool isPost = false;           // one of these calls itself so
    };
    Way WayToText(std::size_t whole, bool isMatterSeen = true) const {
        const auto unlinked = [this](std::size_t i) {
            return parts_[i].ownText - parts_[i].ownLinked;
        };
        std::size_t longest = whole;
        for (std::size_t i = whole; i < parts_[whole].end; ++i)
            if (parts_[i].isLeftOut || (!isMatterSeen && parts_[i].sign == PartSign::kMatter))
                i = parts_[i].end - 1;
            else if (unlinked(i) > unlinked(longest))
                longest = i;
        Way way;
        for (std::size_t i = longest; i != whole && way.kin.size() < kLongWay; i = parts_[i].parent)
            if (parts_[i].kin != 0) {
                way.kin.push_back(parts_[i].kin);
                way.isPost = way.isPost || parts_[i].postName == PostName::kPost;
            }
        return way;
    }
    // Answers may differ from what they answer in something around the text. One or two names in
    // common may be those of any paragraph.
    static bool AreAlike(const Way& way, const Way& other) {
        const auto isShared = [&other](std::size_t kin) {
            return std::ranges::find(other.kin, kin) != other.kin.end();
        };
        if (way.kin.empty() || other.kin.empty() || way.kin[0] != other.kin[0])
            return false;
        return way.isPost && other.isPost && std::ranges::count_if(way.kin, isShared) > 1;
    }
    static bool AreSame(const Way& way, const Way& other) {
        return way.kin == other.kin && way.kin.size() == kLongWay;
    }
    std::size_t ProseOfMatter() const {
        std::size_t prose = 0;
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            const bool isMatter = parts_[i].sign == PartSign::kMatter;
            if (isMatter && !parts_[i].isLeftOut)
                prose += parts_[i].prose;
            if (isMatter || parts_[i].isLeftOut)
                i = parts_[i].end - 1;
        }
        return prose;
    }
    std::vector<bool> HoldersOf(const std::set<std::size_t>& kins) const {
        std::vector<bool> holders(parts_.size());
        for (std::size_t i = parts_.size(); i-- > 1;) {
            if (kins.contains(parts_[i].kin) && parts_[i].text > 0 && !parts_[i].isLeftOut)
                holders[i] = true;
            if (holders[i])
                holders[parts_[i].parent] = true;
        }
        return holders;
    }

    // Of the posts of a thread: dates, buttons, what their writers put below everything.
    void LeaveOutBesidePosts() {
        struct Kin {
            std::size_t posts = 0;
            std::size_t written = 0;  // of them by somebody, or sometime
            std::size_t signedBy = 0;
        };
        std::map<std::size_t, Kin> kins;
        ForEachOutermost([this](std::size_t i) { return IsPost(i); },
                         [&](std::size_t i) {
                             Kin& kin = kins[parts_[i].kin];
                             ++kin.posts;
                             kin.written += IsWritten(i) ? 1 : 0;
                             kin.signedBy += IsSigned(i) ? 1 : 0;
                         });
        std::set<std::size_t> prose;  // kin of what holds it in any post
        for (const PagePart& part : parts_)
            if (part.prose > 0)
                prose.insert(part.kin);
        LeaveOutWhere([&](std::size_t i) {
            const PagePart& part = parts_[i];
            const bool isBeside = part.postName == PostName::kBeside ||
                                  (part.sign == PartSign::kPlace && !prose.contains(part.kin));
            if (!isBeside || HasTitle(i))
                return false;
            // A letter that nobody else signs is signed by its signature.
            const bool isOfSigned = part.postName == PostName::kBeside;
            for (std::size_t post = part.parent; post != 0; post = parts_[post].parent)
                if (const Kin& kin = kins[parts_[post].kin];
                    IsPost(post) && kin.posts > 1 &&
                    (isOfSigned ? kin.signedBy : kin.written) * 2 >= kin.posts)
                    return parts_[post].text > part.text;
            return false;
        });
    }
    bool IsSigned(std::size_t post) const {
        return std::any_of(At(post), At(parts_[post].end),
                           [](const PagePart& part) { return part.namesWriter; });
    }
    bool IsWritten(std::size_t post) const {
        return IsSigned(post) || std::any_of(At(post), At(parts_[post].end),
                                             [](const PagePart& part) { return part.hasTime; });
    }
    std::vector<PagePart>::const_iterator At(std::size_t part) const {
        return parts_.begin() + static_cast<std::ptrdiff_t>(part);
    }
    bool IsPost(std::size_t i) const {
        const PagePart& part = parts_[i];
        return part.postName == PostName::kPost && part.kin != 0 && part.prose > 0;
    }

    // The one element that says that it holds the page's matter.
    void FindMatter() {
        std::size_t main = 0;
        std::size_t article = 0;
        std::size_t second = 0;  // letters of the next longest
        for (std::size_t i = 1; i < parts_.size(); ++i) {
            const PagePart& part = parts_[i];
            if (part.isLeftOut) {
                i = part.end - 1;
                continue;
            }
            if (part.isMain && (main == 0 || part.prose > parts_[main].prose))
                main = i;
            if (!part.isArticle || (article != 0 && IsIn(i, article)))
                continue;
            const std::size_t longest = article == 0 ? 0 : parts_[article].prose;
            second = std::max(second, std::min(longest, part.prose));
            if (article == 0 || part.prose > longest)
                article = i;
        }
        const std::size_t all = parts_[0].prose;
        const bool isArticle = article != 0 && parts_[article].text >= kLeastArticle &&
                               parts_[article].prose >= 3 * second &&
                               parts_[article].prose * 5 >= all * 3;
        matter_ = isArticle                                                            ? article
                  : main != 0 && parts_[main].text >= std::max(kLeastArticle, all / 3) ? main
                                                                                       : 0;
    }

    // From the page down to what holds most of its prose.
    void FindPath() {
        for (std::size_t i = matter_; i != 0; i = parts_[i].parent)
            path_.insert(path_.begin(), i);
        path_.insert(path_.begin(), 0);
        for (;;) {
            const std::size_t open = path_.back();
            std::size_t best = 0;
            for (std::size_t i = open + 1; i < parts_[open].end; i = parts_[i].end)
                if (!parts_[i].isLeftOut && (best == 0 || parts_[i].prose > parts_[best].prose))
                    best = i;
            if (best == 0 || !parts_[best].isContainer || HasKin(best) ||
                parts_[best].prose * 10 < parts_[open].prose * 6 || parts_[best].prose == 0)
                break;
            path_.push_back(best);
        }
        body_ = title_ == 0 && matter_ != 0 ? matter_ : path_.back();
        while (body_ != 0 && title_ != 0 && !HasTitle(body_))
            body_ = parts_[body_].parent;
        // A title may stand in the head of the whole page.
        const std::size_t above = parts_[parts_[body_].parent].parent;
        inner_ = matter_ != 0 ? matter_ : above == 0 ? path_.back() : body_;
    }

    void FindWhetherProseIsAbove() {
        for (std::size_t i = 1; i < title_; ++i)
            if (parts_[i].isLeftOut)
                i = parts_[i].end - 1;
            else if (parts_[i].end <= title_ && parts_[i].prose > 0)
                isProseAbove_ = true;
    }

    // Whether it is one of several: of a thread's posts, a list's teasers.
    bool HasKin(std::size_t part) const {
        const std::size_t parent = parts_[part].parent;
        for (std::size_t i = parent + 1; i < parts_[parent].end; i = parts_[i].end)
            if (i != part && !parts_[i].isLeftOut && parts_[i].kin == parts_[part].kin &&
                parts_[i].kin != 0 && parts_[i].prose > 0)
                return true;
        return false;
    }

    bool IsBesides(std::size_t i) const {
        const PagePart& part = parts_[i];
        if ((part.sign != PartSign::kPlace && part.sign != PartSign::kMarked) || HasTitle(i))
            return false;
        if (part.prose * 2 > parts_[0].prose || part.text * 2 > parts_[0].text ||
            (part.postName == PostName::kPost &&
             std::ranges::find(way_.kin, part.kin) != way_.kin.end()))
            return false;
        const bool isLinks =
            part.sign == PartSign::kMarked ? IsLinks(part) : part.linked * 2 > part.text;
        const bool isFoot = part.sign == PartSign::kMarked &&
                            (parts_[part.parent].isPage || (title_ == 0 && matter_ == 0));
        const bool isBehind = part.isAside && i >= parts_[path_.back()].end;
        const bool isAround = (isFoot || isBehind || !IsIn(i, inner_)) && part.longest < kLongBlock;
        return isLinks || isAround || !IsIn(i, body_);
    }

    // A bar of links, in whatever it stands with the title.
    bool IsAboveTitle(std::size_t i) const {
        const PagePart& part = parts_[i];
        return isTitleSure_ && !isProseAbove_ && part.end <= title_ && !part.isHeading &&
               part.isContainer && part.prose == 0 && part.text > 0 && part.linked == part.text;
    }

    // What stands beside the way to the article.
    void PruneBesidePath() {
        for (std::size_t level = 0; level + 1 < path_.size(); ++level) {
            const std::size_t open = path_[level];
            const std::size_t next = path_[level + 1];
            const bool isOutside = open != body_ && !IsIn(open, body_);
            // Between the title and the end there may be more of the article, behind hardly.
            const bool isBehind = inner_ != body_ && IsIn(inner_, next);
            for (std::size_t i = open + 1; i < parts_[open].end; i = parts_[i].end)
                if (i != next && !HasTitle(i) && !parts_[i].isLeftOut && !parts_[i].isInLine &&
                    !AreAlike(WayToText(i), way_) &&
                    (isOutside || (isBehind && i > next) ? IsForeign(parts_[i]) : IsTail(i, next)))
                    parts_[i].isLeftOut = true;
        }
    }
    static bool IsForeign(const PagePart& part) {
        return part.linked * 2 >= part.text ||
               (part.longest < kLongBlock && part.text - part.linked < kLongPart);
    }
    // Links before the title, and headlines of other articles behind this one.
    bool IsTail(std::size_t i, std::size_t next) const {
        const PagePart& part = parts_[i];
        if (part.isHeading || part.prose > 0 || !IsLinks(part))
            return false;
        return i < title_ || (title_ != 0 && i > next && part.linked * 2 > part.text);
    }

    std::vector<PagePart> parts_;
    std::size_t title_;  // all of these in the list; 0: there is none, or it is the page
    bool isTitleSure_;
    bool isTitleNamed_;
    bool isProseAbove_ = false;  // the title
    std::size_t matter_ = 0;     // the element that says so
    std::size_t article_ = 0;    // of which alone is read
    std::vector<std::size_t> path_;
    Way way_;                // to the longest text
    std::size_t body_ = 0;   // the lowest of it that holds title and prose
    std::size_t inner_ = 0;  // holds prose, but may lack the title
};

}  // namespace

PageSurroundings FindSurroundings(std::string_view page, const ReadingWatch& watch) {
    PageParts parts;
    HtmlReader reader(page, parts);
    parts.SetReader(reader);
    while (reader.ReadSome())
        if (watch.IsToEnd() || parts.IsTooLarge())
            return {};
    const PageTitle title = parts.Title();
    return Judge(parts.Take(), title).Find();
}
