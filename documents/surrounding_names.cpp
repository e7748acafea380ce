#include "documents/surrounding_names.h"

#include <glib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "documents/small_texts.h"

namespace {

constexpr std::size_t kMostWords = 12;  // of one name

constexpr SortedNames<114> kMatterWords = {"aboutauthor",
                                           "abouttheauthor",
                                           "ad",
                                           "ads",
                                           "adslot",
                                           "advert",
                                           "advertisement",
                                           "advertising",
                                           "adverts",
                                           "alsolike",
                                           "anzeige",
                                           "anzeigen",
                                           "authorbio",
                                           "authorbox",
                                           "authorcard",
                                           "authorinfo",
                                           "backtop",
                                           "bio",
                                           "catlinks",
                                           "cmp",
                                           "comentarios",
                                           "comment",
                                           "commentaires",
                                           "comments",
                                           "compartir",
                                           "consent",
                                           "cookie",
                                           "cookies",
                                           "disqus",
                                           "editsection",
                                           "feedback",
                                           "forumquickjump",
                                           "forumrules",
                                           "gdpr",
                                           "jumpbox",
                                           "jumplink",
                                           "jumptorecipe",
                                           "kommentar",
                                           "kommentare",
                                           "leaderboard",
                                           "mostread",
                                           "mostviewed",
                                           "navbox",
                                           "navpopupmenu",
                                           "newsletter",
                                           "newsletters",
                                           "noprint",
                                           "onetrust",
                                           "online",
                                           "outbrain",
                                           "pagelinks",
                                           "pager",
                                           "pagination",
                                           "paging",
                                           "partager",
                                           "paywall",
                                           "popular",
                                           "popupbody",
                                           "popupmenu",
                                           "postprofile",
                                           "printfooter",
                                           "privacy",
                                           "promo",
                                           "promos",
                                           "promoted",
                                           "promotion",
                                           "promotions",
                                           "publicidad",
                                           "publicite",
                                           "quickjump",
                                           "reactions",
                                           "readmore",
                                           "readnext",
                                           "reciperating",
                                           "recirculation",
                                           "recommend",
                                           "recommendation",
                                           "recommendations",
                                           "recommended",
                                           "related",
                                           "relatedposts",
                                           "reply",
                                           "respond",
                                           "seealso",
                                           "share",
                                           "sharedaddy",
                                           "sharing",
                                           "sidebarwidget",
                                           "signup",
                                           "sitenotice",
                                           "sitesub",
                                           "skip",
                                           "skiplink",
                                           "social",
                                           "sponsor",
                                           "sponsored",
                                           "subscribe",
                                           "subscription",
                                           "taboola",
                                           "taglist",
                                           "teilen",
                                           "trending",
                                           "upsell",
                                           "usercard",
                                           "userinfo",
                                           "vote",
                                           "votecell",
                                           "votes",
                                           "voting",
                                           "werbung",
                                           "widgets",
                                           "wikitools",
                                           "xsell",
                                           "youmayalsolike"};
static_assert(std::is_sorted(kMatterWords.begin(), kMatterWords.end()));

constexpr SortedNames<79> kPlaceWords = {
    "action",     "actionbar", "actions",    "announcement", "back2top",   "badge",
    "badges",     "banner",    "breadcrumb", "breadcrumbs",  "brotkrumen", "buttons",
    "cart",       "colophon",  "copyright",  "dropdown",     "footer",     "fuss",
    "headbar",    "header",    "headerbar",  "jump",         "kicker",     "kopf",
    "lang",       "langs",     "languages",  "login",        "logo",       "masthead",
    "mehr",       "menu",      "menubar",    "menus",        "modal",      "more",
    "most",       "nav",       "navbar",     "navfooter",    "navheader",  "navi",
    "navigation", "notice",    "overlay",    "payment",      "popup",      "portlet",
    "postmeta",   "print",     "profile",    "rating",       "recent",     "recently",
    "search",     "settings",  "side",       "sidebar",      "sidenav",    "sphinxsidebar",
    "stat",       "stats",     "tag",        "taglist",      "tags",       "teaser",
    "teasers",    "ticker",    "toc",        "toolbar",      "tools",      "topbar",
    "topics",     "topnav",    "updated",    "user",         "version",    "viewed",
    "widget"};
static_assert(std::is_sorted(kPlaceWords.begin(), kPlaceWords.end()));

// Said of parts of any kind.
constexpr SortedNames<106> kPlainWords = {
    "a",       "area",    "article",   "bar",       "bloc",      "block",   "blocks",   "body",
    "bottom",  "box",     "boxes",     "btn",       "button",    "c",       "card",     "cards",
    "col",     "column",  "common",    "component", "container", "content", "contents", "cross",
    "cta",     "desktop", "details",   "disabled",  "doc",       "enabled", "end",      "entry",
    "first",   "fixed",   "float",     "form",      "full",      "global",  "group",    "h",
    "haupt",   "holder",  "hot",       "icon",      "icons",     "info",    "inline",   "inner",
    "item",    "items",   "js",        "large",     "last",      "left",    "link",     "linke",
    "links",   "list",    "liste",     "main",      "middle",    "mobile",  "module",   "network",
    "news",    "outer",   "page",      "panel",     "post",      "posts",   "primary",  "questions",
    "rail",    "read",    "rechte",    "ref",       "region",    "return",  "rich",     "right",
    "row",     "s",       "secondary", "section",   "sell",      "site",    "slot",     "small",
    "spalte",  "sticky",  "stories",   "story",     "theme",     "thread",  "thumb",    "title",
    "to",      "top",     "unit",      "users",     "view",      "wide",    "width",    "wrap",
    "wrapper", "zone"};
static_assert(std::is_sorted(kPlainWords.begin(), kPlainWords.end()));

constexpr SortedNames<10> kPostWords = {"answer",        "comment", "message",  "post",  "postbit",
                                        "postbitlegacy", "posting", "postitem", "reply", "topic"};
static_assert(std::is_sorted(kPostWords.begin(), kPostWords.end()));

constexpr SortedNames<33> kBesidePostWords = {"controls",
                                              "edited",
                                              "eventpost",
                                              "expandlink",
                                              "infos",
                                              "ipscommentmeta",
                                              "keyinfo",
                                              "lastedit",
                                              "lastedited",
                                              "likes",
                                              "linkback",
                                              "linkbacks",
                                              "membersignature",
                                              "messagelastedit",
                                              "messageuserextras",
                                              "messageusertitle",
                                              "moderatorbar",
                                              "modified",
                                              "nodecontrols",
                                              "postcounter",
                                              "postdate",
                                              "postfoot",
                                              "postinfo",
                                              "postlikes",
                                              "postmeta",
                                              "quickbuttons",
                                              "replyplaceholder",
                                              "signature",
                                              "signaturecontainer",
                                              "textcontrols",
                                              "timegap",
                                              "undermessage",
                                              "usertitle"};
static_assert(std::is_sorted(kBesidePostWords.begin(), kBesidePostWords.end()));

// Names of other things are told as well.
constexpr SortedNames<12> kWriterWords = {"author",      "authorname", "byline",      "creator",
                                          "displayname", "membername", "messagename", "nick",
                                          "nickname",    "poster",     "screenname",  "username"};
static_assert(std::is_sorted(kWriterWords.begin(), kWriterWords.end()));
constexpr SortedNames<4> kTimeWords = {"date", "datetime", "time", "timestamp"};
static_assert(std::is_sorted(kTimeWords.begin(), kTimeWords.end()));

// "relatedNews__title-2" as "related", "news", "title".
std::vector<std::string> WordsOfName(std::string_view name) {
    std::vector<std::string> words;
    bool isNew = true;
    char before = 0;
    for (const char sign : name) {
        if (g_ascii_isalpha(sign)) {
            isNew = isNew || (g_ascii_isupper(sign) && g_ascii_islower(before));
            if (isNew)
                words.emplace_back();
            words.back() += g_ascii_tolower(sign);
        }
        isNew = !g_ascii_isalpha(sign);
        before = sign;
    }
    return words;
}

SurroundingName Judged(std::string_view name, std::size_t mostOwnWords) {
    const std::vector<std::string> words = WordsOfName(name);
    if (words.size() > kMostWords)
        return SurroundingName::kNone;
    std::string joined;  // "box", "author-box", "post-author-box"
    for (std::size_t i = words.size(); i-- > 0;) {
        joined.insert(0, words[i]);
        if (i + 1 < words.size() && (i == 0 || mostOwnWords > 1) && IsOneOf(joined, kMatterWords))
            return SurroundingName::kMatter;
    }
    SurroundingName judged = SurroundingName::kNone;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (IsOneOf(words[i], kMatterWords))
            judged = SurroundingName::kMatter;
        else if (IsOneOf(words[i], kPlaceWords))
            judged = std::max(judged, SurroundingName::kPlace);
        else if ((judged != SurroundingName::kNone || i >= mostOwnWords) &&
                 !IsOneOf(words[i], kPlainWords))
            return SurroundingName::kNone;
    }
    return judged;
}

// Each of the names that blanks part.
template <typename Take>
void ForEachName(std::string_view names, Take take) {
    while (!names.empty()) {
        const std::size_t end = std::min(names.find_first_of(kWhiteSpace), names.size());
        take(names.substr(0, end));
        names.remove_prefix(std::min(end + 1, names.size()));
    }
}

SurroundingName JudgedAll(std::string_view names, std::size_t mostOwnWords) {
    SurroundingName judged = SurroundingName::kNone;
    ForEachName(names, [&](std::string_view name) {
        judged = std::max(judged, Judged(name, mostOwnWords));
    });
    return judged;
}

template <std::size_t kCount>
bool EndsAnyWith(std::string_view names, const SortedNames<kCount>& lastWords) {
    bool isOne = false;
    ForEachName(names, [&](std::string_view name) {
        const std::vector<std::string> words = WordsOfName(name);
        const std::size_t count = words.size();
        isOne = isOne || (count > 0 && IsOneOf(words.back(), lastWords)) ||
                (count > 1 && IsOneOf(words[count - 2] + words.back(), lastWords));
    });
    return isOne;
}

}  // namespace

SurroundingName SurroundingNameOfClass(std::string_view names) {
    return JudgedAll(names, kMostWords);
}

SurroundingName SurroundingNameOfId(std::string_view name) {
    return JudgedAll(name, 1);
}

PostName PostNameOfClass(std::string_view names) {
    PostName judged = PostName::kNone;
    ForEachName(names, [&](std::string_view name) {
        const std::vector<std::string> words = WordsOfName(name);
        if (words.size() > kMostWords)
            return;
        bool isBeside = false;
        std::string joined;  // "edited", "lastedited", "messagelastedited"
        for (std::size_t i = words.size(); i-- > 0;) {
            joined.insert(0, words[i]);
            isBeside = isBeside || IsOneOf(words[i], kBesidePostWords) ||
                       IsOneOf(joined, kBesidePostWords);
        }
        const auto isPost = [](const std::string& word) {
            return IsOneOf(word, kPostWords) || word.ends_with("post") || word.ends_with("comment");
        };
        if (isBeside)
            judged = PostName::kBeside;
        else if (std::ranges::any_of(words, isPost))
            judged = std::max(judged, PostName::kPost);
    });
    return judged;
}

bool IsNameOfWriter(std::string_view names) {
    return EndsAnyWith(names, kWriterWords);
}

bool IsNameOfTime(std::string_view names) {
    return EndsAnyWith(names, kTimeWords);
}
