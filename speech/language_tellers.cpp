#include "speech/language_tellers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

namespace {

// Parted by "|", with blanks for the ends of words.
struct Tellers {
    std::string_view language;
    std::array<std::string_view, 3> parts;
};

// "vrijeme" of Croatia and Bosnia is "vreme" in Serbia.
constexpr std::string_view kIjekavian =
    "rije|lije|dije|cije|gdje|ovdje|mjes|mjer|vjer|svje|djel|djec|sljed|uspje|smije|smje|sjed|"
    "sjev|tjel|cvij|svij|snij|zvij|bije|tjed|zahtjev|uvjet|vrije|mije";
// What Serbia and Bosnia say, and Croatia says otherwise.
constexpr std::string_view kSerbian =
    " šta | neko | niko |fajl|podrazum|interfej|tačk|tačn|opšt|sistem|računar|korišće|hiljad|"
    "muzik|fudbal|univerz|januar|februar|avgust|septemb|oktob|novemb|decemb|tisat|nisat|lisat|"
    "kisat| da li |saobrać";
// What Slovenia says otherwise than they all.
constexpr std::string_view kSouthSlavic = "ć|đ| su | u | i | nije | kao | ili |og ";

constexpr Tellers kTellers[] = {
    {"da",
     {" af |tion|hed |heden|ede |efter| ud| op |øj|ej| at |æ|øg|igt |uden|brug|sprog|mellem|hvad |"
      "nogen|noget|meget| mig | dig | blev | blive| have |erne |øb|dsk|inde|kend|find|uge |ade |"
      "dt |f |ærk|æn|giv|lad|ræk"}},
    {"nb",
     {" av |sjon|het |heten|etter| ut|pp |øy|ei| å |les |noe|lig |uten|bruk|nn |mellom| hva |"
      " mye | meg | deg |ll |tt |gj|kj|ss |ene |kk |øk|finne|sj|rte | bare |ett "
      "|erk|endr|inn|king|ytt|utt| ble |fei"}},
    {"sv", {"ä|ö| och | att | inte | är |a |ar |ett |ck|mn|ch|x|bort"}},
    {"es",
     {" y | los | las | el | del |pue|fue|mue|nue|uev|tie|mie|vie|ier|nea |jo |ja |aje|ede |dad |"
      "iones |sin |udo|cha |cho|ales |uestr|hac| una |illo |illa |uelt|ieron |ñ|ón | un "
      "|ción|ien|chiv|os |do |to "}},
    {"gl",
     {" non |unha|óns |ións |bel | x|xect|xe |iñ|oñ|áis|ous|ou |ei |duci|use |nx|rx|axe|áxi|xer|"
      "xir|xen| dun| nun|eiro|eira|dade | moi | hai |oxe|uxi| ten | cun|ñ|ón | o | os | ao | co |"
      " coa | cos | un |ción|os |do |to "}},
    {"pt",
     {"ã|õ| um|em |vel|lh|nh|ê|ç|ss|zi|m | não | com | muit|aco|ô|qua|â|eve|eiro|eira|ou |ei |"
      "dade | o | os | ao |gem |ns |os |do |to "}},
    {"ca",
     {"t |'|à|ls |ció |sió |xer|txe|eix|itx|è| les | els | amb | per |ix |tz|tge|·l|cions|ny|ons |"
      "tat|rs |ll |ï| i |cs | hi |ment |ò|st | el | del | un "}},
    {"nl", {"ij|z|tie|sch|een |ren |nen |den |ten |ken |len |ven |cht|c"}},
    {"af", {"nie |sk|gs |die |'n |’n |y|ê|ô|kon|sie |sies |ir |ië|lik|oor |ing "}},
    {"bg", {"ъ| се |ият |й|я|щ|ю"}},
    {"ru", {"ы|э|ё|й|я|щ|ю"}},
    {"uk", {"і|ї|є|ґ|й|я|щ|ю"}},
    {"be", {"ў|і|ы|э|ё|й|я|ю"}},
    {"sr",
     {"ј|љ|њ|ђ|ћ|џ|gde | vreme | reči |rečnik|mesto|išete| da "
      "vid|uopšte|izvešt|nedelj|sledeć|posled|"
      " uvek | pre | posle |svet| lep| deo |uspe|odoz",
      kSerbian, kSouthSlavic}},
    {"hr",
     {"irat|sučelj|točk|točn|opć|sustav|računal|korište|pogrešk|izvješ|posluži|tisuć|europ|vrijed|"
      " što |tijek| rabi|redak|redk|tvrtk|glazb|sveučil| tko | netko | nitko |siječ|ožuj|kolov|"
      "listop|prosin|zrak|naziv|redb|valja|zadan|dopušt|oguć|treba|iji |izvan|ijet|tipk",
      kIjekavian, kSouthSlavic}},
    {"bs", {kSerbian, kIjekavian, kSouthSlavic}},
    {"sl",
     {" ni |ega |če |tev | v |dp|zp|vz|vs| z | in |šč|goč|loč|lahko|napa| ki |ev |čas|emu |jo |"
      "več| ob | kot | bo | ter |mesto|sistem|vredno|ej|naj| ali |žn|vrstic|okn|štev|rj"}},
};

struct Letters {
    std::string_view language;
    std::string_view letters;
};
constexpr Letters kLetters[] = {{"cs", "á é í ý ú ů ě ř Á É Í Ú"},
                                {"sk", "á é í ý ú ô ä ľ Á É Í Ú"}};

template <typename Visitor>
void EachPart(std::string_view parts, char mark, Visitor visit) {
    while (!parts.empty()) {
        const std::size_t end = std::min(parts.find(mark), parts.size());
        if (end > 0)
            visit(parts.substr(0, end));
        parts.remove_prefix(std::min(end + 1, parts.size()));
    }
}

// The first eight bytes of a text, or what it has of them.
std::uint64_t BeginningOf(std::string_view text) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data(), std::min(text.size(), sizeof bytes));
    return bytes;
}

struct TellerPart {
    std::string_view text;
    std::uint64_t beginning;
    std::uint64_t mask;                  // the bytes of a beginning that it has
    std::vector<std::size_t> languages;  // places in kTellers
};

// All of them by their first two bytes, so that a text is gone through once for all languages.
struct TellerParts {
    std::vector<TellerPart> all;
    std::array<std::vector<std::size_t>, 1U << 10> byBeginning;

    // Of two bytes, or of one that is the last.
    static std::size_t PlaceOf(std::string_view text) {
        const auto byte = [text](std::size_t at) {
            return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
        };
        return (byte(0) << 4U ^ byte(1)) % (1U << 10);
    }

    void Add(std::string_view text, std::size_t language) {
        auto part = std::ranges::find(all, text, &TellerPart::text);
        if (part == all.end()) {
            const std::string_view ones("\xff\xff\xff\xff\xff\xff\xff\xff", 8);
            part = all.insert(
                part, {text, BeginningOf(text), BeginningOf(ones.substr(0, text.size())), {}});
            for (unsigned next = 0; next < 256; ++next) {
                const std::string any{text[0], static_cast<char>(next)};
                if (text.size() == 1 || next == static_cast<unsigned char>(text[1]))
                    byBeginning[PlaceOf(any)].push_back(all.size() - 1);
            }
        }
        part->languages.push_back(language);
    }
};

const TellerParts& AllTellers() {
    static const TellerParts* const parts = [] {
        auto* const made = new TellerParts;
        for (std::size_t language = 0; language < std::size(kTellers); ++language)
            for (const std::string_view one : kTellers[language].parts)
                EachPart(one, '|', [&](std::string_view part) { made->Add(part, language); });
        return made;
    }();
    return *parts;
}

}  // namespace

TellersIn::TellersIn(std::string_view text) : counts_(std::size(kTellers)) {
    const TellerParts& parts = AllTellers();
    std::vector<std::size_t> ends(parts.all.size());  // none counts twice where it lies over itself
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view rest = text.substr(at);
        const std::uint64_t beginning = BeginningOf(rest);
        for (const std::size_t index : parts.byBeginning[TellerParts::PlaceOf(rest)]) {
            const TellerPart& part = parts.all[index];
            if ((beginning & part.mask) != part.beginning || at < ends[index] ||
                !rest.starts_with(part.text))
                continue;
            ends[index] = at + part.text.size();
            for (const std::size_t language : part.languages)
                ++counts_[language];
        }
    }
}

std::size_t TellersIn::Of(std::string_view language) const {
    const auto* const found = std::ranges::find(kTellers, language, &Tellers::language);
    return found == std::end(kTellers) ? 0 : counts_[static_cast<std::size_t>(found - kTellers)];
}

bool HasTellers(std::string_view language) {
    return std::ranges::find(kTellers, language, &Tellers::language) != std::end(kTellers);
}

bool LacksItsLetters(std::string_view text, std::string_view language) {
    const auto* const found = std::ranges::find(kLetters, language, &Letters::language);
    if (found == std::end(kLetters))
        return false;
    bool lacks = true;
    EachPart(found->letters, ' ', [&](std::string_view letter) {
        lacks = lacks && text.find(letter) == std::string_view::npos;
    });
    return lacks;
}
