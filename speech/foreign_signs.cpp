// Signs in words of the languages whose voices read a one-byte charset.
#include <algorithm>
#include <iterator>

#include "speech/character_tables.h"

namespace {

struct ForeignEntry {
    std::string_view language;
    char32_t character;
    ForeignSign sign;
};
constexpr ForeignEntry kForeignSigns[] = {
    {"it", U'€', {"euro", "euro"}},
    {"it", U'₤', {"lira", "lire"}},
    {"it", U'₽', {"rublo", "rubli"}},
    {"it", U'₹', {"rupia", "rupie"}},
    {"it", U'‰', {"per mille", nullptr}},
    {"it", U'№', {"numero", nullptr}},
    {"it", U'≈', {"circa", nullptr}},
    {"it", U'≠', {"diverso da", nullptr}},
    {"it", U'≤', {"minore o uguale a", nullptr}},
    {"it", U'≥', {"maggiore o uguale a", nullptr}},
    {"it", U'∞', {"infinito", nullptr}},
    {"it", U'√', {"radice quadrata di", nullptr}},
    {"it", U'π', {"pi greco", nullptr}},
    {"ca", U'₽', {"ruble", "rubles"}},
    {"ca", U'₹', {"rupia", "rupies"}},
    {"ca", U'‰', {"per mil", nullptr}},
    {"ca", U'№', {"número", nullptr}},
    {"ca", U'≈', {"aproximadament", nullptr}},
    {"ca", U'≠', {"diferent de", nullptr}},
    {"ca", U'≤', {"menor o igual que", nullptr}},
    {"ca", U'≥', {"major o igual que", nullptr}},
    {"ca", U'∞', {"infinit", nullptr}},
    {"ca", U'√', {"arrel quadrada de", nullptr}},
    {"ca", U'π', {"pi", nullptr}},
    {"fi", U'€', {"euro", "euroa"}},
    {"fi", U'₽', {"rupla", "ruplaa"}},
    {"fi", U'₹', {"rupia", "rupiaa"}},
    {"fi", U'‰', {"promillea", nullptr}},
    {"fi", U'№', {"numero", nullptr}},
    {"fi", U'≈', {"noin", nullptr}},
    {"fi", U'≠', {"eri suuri kuin", nullptr}},
    {"fi", U'≤', {"pienempi tai yhtä suuri kuin", nullptr}},
    {"fi", U'≥', {"suurempi tai yhtä suuri kuin", nullptr}},
    {"fi", U'∞', {"ääretön", nullptr}},
    {"fi", U'√', {"neliöjuuri", nullptr}},
    {"fi", U'π', {"pii", nullptr}},
    {"cs", U'€', {"euro", "eur"}},
    {"cs", U'£', {"libra", "liber"}},
    {"cs", U'¥', {"jen", "jenů"}},
    {"cs", U'₽', {"rubl", "rublů"}},
    {"cs", U'₹', {"rupie", "rupií"}},
    {"cs", U'±', {"plus minus", nullptr}},
    {"cs", U'‰', {"promile", nullptr}},
    {"cs", U'№', {"číslo", nullptr}},
    {"cs", U'≈', {"přibližně", nullptr}},
    {"cs", U'≠', {"není rovno", nullptr}},
    {"cs", U'≤', {"menší nebo rovno", nullptr}},
    {"cs", U'≥', {"větší nebo rovno", nullptr}},
    {"cs", U'∞', {"nekonečno", nullptr}},
    {"cs", U'√', {"odmocnina z", nullptr}},
    {"cs", U'µ', {"mikro", nullptr}},
    {"cs", U'½', {"půl", nullptr}},
    {"cs", U'©', {"copyright", nullptr}},
    {"cs", U'π', {"pí", nullptr}},
};

}  // namespace

const ForeignSign* FindForeignSign(std::string_view language, char32_t character) {
    const auto* const found = std::ranges::find_if(kForeignSigns, [&](const ForeignEntry& one) {
        return one.character == character && one.language == language;
    });
    return found == std::end(kForeignSigns) ? nullptr : &found->sign;
}
