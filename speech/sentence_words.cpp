#include "speech/sentence_words.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace {

// One space around each word.
bool Holds(std::string_view words, std::string_view word) {
    if (word.empty() || word.find(' ') != std::string_view::npos)
        return false;
    for (std::size_t at = words.find(word); at != std::string_view::npos;
         at = words.find(word, at + 1))
        if (words[at - 1] == ' ' && words[at + word.size()] == ' ')
            return true;
    return false;
}

struct LanguageWords {
    std::string_view language;
    std::string_view small;           // words that tell it from others
    std::string_view needsFollowing;  // beyond those that all have
};
constexpr LanguageWords kLanguages[] = {
    {"en", " the and of to is that it was you for with are this have not ",
     " Messrs Mme Rev Hon Gov Sgt Cpl Pvt Maj Cmdr Supt Sen Rep Pres Ave Blvd "
     "Rd Mt Ft Jan Feb Mar "
     "Apr Jun Jul Aug Sep Sept Oct Nov Dec viz ca approx dept est "
     "govt "},
    {"de", " der die das und ist nicht ein eine zu den mit auf von im sich des dem ",
     " med z.B z. B d.h d. h u.a u. a o.ä bzw ca evtl ggf inkl Hr Hrn Fr Frl Str "
     "Tel Abb Abs Art Bd "
     "Mio Mrd Nr S s vgl Ing Dipl Kfm Rd Abt Aufl Verf v.a zzgl Jh St sog rd "
     "i.d.R m.E z.T z.Zt "
     "gem jmd jmdn jmdm bspw bes ehem einschl mind mtl südl nördl zul tel "
     "Jan Feb Apr Aug Sept Okt Nov Dez Mag Univ Hrsg Inh geb gest "},
    {"fr", " le la les et est un une des dans que qui pour pas au du sur il elle ce ",
     " apr aprox M MM Mme Mmes Mlle Mlles Me Mgr av env ex bd éd fasc ibid janv févr "
     "juill sept déc p.ex "
     "c.-à-d chap vs "},
    {"es", " el los las y es un una que en por con para del se no su como ",
     " aprox Av Avda Bs Mt Sr Sra Sres Sras Srta Dra Dr Ud Uds Vd Vds D Da Dña p.ej ej pág págs "
     "núm art cap tel avda c "
     "Excmo Excma Ilmo Lic Ing Arq Prof Gral "},
    {"it", " il lo gli di che è un una per non con del della sono si nel le ",
     " Egr egr Ing Geom Arch Sig sig Sigg Sig.ra Sig.na dott Dott prof Prof ing Ing avv Avv geom "
     "pag "
     "pagg cap art es ecc.to lun mar mer gio ven gen feb apr mag giu lug sett ott nov dic "
     "psicol "
     "on On n N tel v ca p.es sec arch "},
    {"pt", " o os as e é um uma que em para com não do da dos das se ",
     " aprox Sr Sra Srs Dr Dra Exmo Exma Prof Profa Eng pág págs núm art cap tel "
     "p.ex av Av "},
    {"nl", " de het een en van is niet dat op te met voor zijn er ",
     " dhr mevr mw mr drs ir ing ds bijv blz nr o.a d.w.z m.b.t t.a.v t.o.v "
     "i.p.v enz.v ca incl "
     "excl Mgr prof jhr st afb vgl "},
    {"pl", " i w nie to się na że jest z do jak po ale ",
     " np m.in tzn tzw ul al pl prof dr inż mgr hab gen płk kpt por św ok nr "
     "str tel godz zob lek "
     "red wyd r.ż p.o pt ww med hum "},
    {"cs", " a je se na že to v s z do by byl jako ale ",
     " např pí tj tzn tzv č čl str obr sv ing mgr mudr judr phdr prof doc ul nám "
     "tel r mj resp popř "
     "cca gen plk "},
    {"ru", "",
     " т.е т. е т.д.и т.к т.н т.п.и напр см ср ул пр просп пл пер д кв корп г "
     "гг.и им проф акад "
     "доц инж гр тов стр рис табл гл п пп ст св тыс млн млрд руб.за тел обл "
     "р-н с р мл ген полк "},
    {"el", "", " κ κα κος Δρ σελ π.χ π. χ δηλ βλ αρ τηλ οδ εικ αι κ.ά αιώνα "},
    {"da", " og det er en at på af ikke han jeg til var den med der som hun kl ",
     " adr hr fr kl ca bl.a f.eks dvs mht pga s jf nr tlf afs mio mia evt inkl ekskl jan "
     "feb apr "
     "aug sept okt nov dec "},
    {"nb", " og det er en på av ikke han jeg til var den med der som hun ",
     " hr fr kl ca bl.a f.eks dvs mht pga s jf nr tlf mill mrd evt inkl jan feb apr aug sept okt "
     "nov "
     "des "},
    {"sv", " och det är en ett på av inte han jag till var den med som hon ",
     " t.ex bl.a dvs kl ca s.k nr tel fr hr resp st f.d jfr sid jan feb apr aug sept okt nov dec "},
    {"bg", "",
     " гр г-н г-жа вж фиг табл стр ул бл ап чл т.е т.нар напр млн млрд хил св ч р в пр.н.е "},
    {"kk", "", " көш ж ғ млн млрд мың т.б қ обл ауд см "},
};

// Of any language, where no other has the word.
constexpr std::string_view kNeedsFollowing =
    " dr drs mr Egr Adr adr им Mevr mevr dhr Hr hr Hrn Dra Dott dott dott.ssa Avv avv Geom geom "
    "Ing Mgr Bc Doc MUDr "
    "MVDr JUDr PhDr RNDr mgr inż ks św ul np Sig Sig.ra sig.ra Sig.na Srta Sra Excmo EE É.-U "
    "bzw ca evtl vgl z.B d.h u.a bijv blz afb kl.op ул просп проф акад доц инж г-н г-жа "
    "डॉ श्री श्रीमती पं प्रो कु स्व सुश्री ص اے بی سی ڈی ایم ایس آر جے د أ م هـ ق "
    "Mr Mrs Ms Dr Prof St Gen Col Capt Lt Fr Br Dir Drs Mx e.g i.e eg ie cf "
    "vs v c.f Fig Figs fig napr Mt "
    "figs Nr nr Nos N° n° Univ al.et Herr Hr Sr.ta Mlle Mme Msgr Adm Cdr Insp "
    "Pfc Ph ";
constexpr std::string_view kNeedsNumber =
    " stk Stk bd Bd kr p pp P Pp No no Nos nos Nr nr Art art Fig fig Vol vol Ch ch Sec sec Sect "
    "Tab tab pg pgs pág "
    "págs pag pagg str стр с п рис гл ст σελ n N N° n° núm num chap cap col Ed "
    "ed ver Ver ext Ext "
    "§ kl godz hod ob вж фиг табл ап бл чл кв д рис гл стр номер бр kap rys tab zob obr č Č abb "
    "Abb "
    "afb εικ αρ κεφ μέρος पृ ";
// Of any language: what day and year stand around in one is nothing else in another.
constexpr std::string_view kMonths =
    " jan janv feb febr févr fev mar mär avr abr apr mai mag may maj giu jun juin jul juil juill "
    "lug "
    "aug ago août sep sept set sett oct okt ott out nov dec dez dic déc des ene gen led úno bře "
    "dub "
    "kvě čvn čvc srp zář říj lis pro sty lut kwi cze lip sie wrz paź gru янв фев февр мар апр июн "
    "июл авг сен сент окт ноя нояб дек ";
constexpr std::string_view kMayEnd =
    " Calif Conn Tenn Ariz Ill Wis Minn Okla Wash Fla App Co co Inc Ltd Corp Jr Sr Bros "
    "Esq etc Etc a.m p.m A.M P.M U.S U.K E.U enz osv o.s.v "
    "U.N U.S.A D.C B.C A.D "
    "Ph.D M.D B.A M.A st St ave Ave Rd rd Blvd dept usw ecc etc.a enz itd itp "
    "apod atd tzn.p т.д "
    "т.п др пр г гг в вв н.э руб коп км м кг EE.UU al S.A S.p.A s.r.o a.s "
    "GmbH.i Ud Uds κλπ κ.λπ "
    "κτλ Rep Sen Gov Est est ";
constexpr std::string_view kUsuallyEnds =
    " etc Etc usw ecc enz itd itp apod atd osv o.s.v m.m mv т.д т.п т.н κλπ κ.λπ κτλ κ.ά т.б stb "
    "etc. ";
// A short form, then what it ends a sentence behind: "#" a number, "I" a Roman one, else the word.
constexpr std::pair<std::string_view, std::string_view> kEndsBehind[] = {
    {"г", "#"},  {"гг", "#"}, {"р", "#"},  {"r", "#"},  {"w", "I"},  {"в", "I"},
    {"вв", "I"}, {"д", "т."}, {"п", "т."}, {"др", "и"}, {"пр", "и"}, {"н", "т."},
    {"лв", "#"}, {"тг", "#"}, {"ч", "#"},  {"ж", "#"},  {"б", "т."}, {"kr", "#"}};
// Who says, asks or answers; whole words where blanks part them.
constexpr std::string_view kSayings =
    " कहा पूछा बोला बोली बोले चिल्लाया चिल्लाई کہا پوچھا بولا بولی چلایا گفت پرسید گفتند سأل سألت قال "
    "قالت "
    "صاح صرخ صرخت አለ አለች ጠየቀ ጠየቀች አሉ לחש אמר אמרה שאל שאלה ";
constexpr std::string_view kSayingsWithin[] = {"说", "說", "问", "問", "答", "喊", "叫", "道"};
// Particles that go on with what was quoted, Japanese and Burmese.
constexpr std::string_view kGoesOn[] = {"と", "って", "を", "が", "は", "に", "も", "で",
                                        "へ", "の",   "や", "な", "か", "လို့",  "ဟု",  "လို"};
constexpr std::size_t kSayingClose = 12;   // bytes, without blanks between words
constexpr std::size_t kSayingAmong = 100;  // with blanks
// Sentences begin so, but neither names nor what stands behind an abbreviation
// within one.
constexpr std::string_view kBeginners =
    " A After All Also Although And Another As At Because Before Being But By "
    "Can Could Did Do "
    "Does "
    "Everyone First For From Had Has Have He Her Here His How However I If In "
    "Is It Its It's Last "
    "Let Many Maybe Millions More Most My No Nobody Not Now On Once One Or "
    "Others Our Perhaps She "
    "Should Since So Some Still That The Their Then There These They This "
    "Those Though Thus To "
    "Today Tomorrow Two Was We Well Were What When Where Whether Which While "
    "Who Why Will With "
    "Would Yes Yesterday Yet You Your "
    "Der Die Das Den Dem Ein Eine Er Sie Es Wir Ihr Ich Du Und Aber Doch Dann "
    "Da Dort Hier Wie Was "
    "Wer Wo Wann Warum Wenn Weil Als Auch Nach Nun Jetzt Dies Diese Dieser "
    "Dieses So "
    "Le La Les Un Une Il Elle Ils Elles Nous Vous Je Tu Et Mais Ce Cette Ces "
    "C'est Que Qui Quand "
    "Comment Pourquoi On En Dans Pour "
    "El Los Las Una Ella Ellos Yo Usted Y Pero Este Esta Esto Qué Cómo Cuándo "
    "No Se Es "
    "Lo Gli Uno Lui Lei Loro Noi Io Ma Questo Questa Come Quando Perché È Non "
    "Он Она Оно Они Мы Вы Я Ты И А Но Это Этот Эта В На С По Как Что Когда Где "
    "Почему Так Если "
    "Там Тут Все Уже Было Был Была "
    "Det De Jeg Hun Og Hvad Hvor Hvordan Når Jag Vad När Och ";
constexpr std::string_view kTitles = " Mr Mrs Ms Dr Prof Herr Frau Mme Sr Sra ";
constexpr std::string_view kDottedOrdinals =
    " de cs pl fi da nb no sk sl hr sr hu et lv lt tr is eu ";

constexpr std::size_t kEnoughToGuess = 2000;

// "Prof." as "prof."
bool HoldsInAnyCase(std::string_view words, std::string_view word) {
    if (Holds(words, word))
        return true;
    const gunichar first = g_utf8_get_char_validated(word.data(), static_cast<gssize>(word.size()));
    if (first >= 0x110000 || g_unichar_isupper(first) == 0)
        return false;
    char small[6];
    const int size = g_unichar_to_utf8(g_unichar_tolower(first), small);
    return Holds(words, std::string(small, static_cast<std::size_t>(size)) +
                            std::string(word.substr(static_cast<std::size_t>(
                                g_utf8_skip[static_cast<unsigned char>(word[0])]))));
}

bool IsDottedInitials(std::string_view word) {
    if (word.find('.') == std::string_view::npos)
        return false;
    const gunichar first = g_utf8_get_char_validated(word.data(), static_cast<gssize>(word.size()));
    if (first >= 0x110000 || g_unichar_isalpha(first) == 0)
        return false;
    const auto size = static_cast<std::size_t>(g_utf8_next_char(word.data()) - word.data());
    // Of other alphabets capital letters alone: "Л.Н", but "т.е".
    return word.size() > size + 1 && word[size] == '.' &&
           (g_ascii_isalpha(word[0]) || g_unichar_isupper(first) != 0);
}

std::string_view LanguageOfScript(std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end;) {
        const gunichar letter = g_utf8_get_char_validated(at, end - at);
        if (letter >= 0x110000) {
            ++at;
            continue;
        }
        if (g_unichar_isalpha(letter)) {
            switch (g_unichar_get_script(letter)) {
                case G_UNICODE_SCRIPT_CYRILLIC:
                    return "ru";
                case G_UNICODE_SCRIPT_GREEK:
                    return "el";
                case G_UNICODE_SCRIPT_HAN:
                    return "zh";
                case G_UNICODE_SCRIPT_HIRAGANA:
                case G_UNICODE_SCRIPT_KATAKANA:
                    return "ja";
                case G_UNICODE_SCRIPT_DEVANAGARI:
                    return "hi";
                case G_UNICODE_SCRIPT_ARABIC:
                    return "ar";
                case G_UNICODE_SCRIPT_ARMENIAN:
                    return "hy";
                case G_UNICODE_SCRIPT_ETHIOPIC:
                    return "am";
                case G_UNICODE_SCRIPT_MYANMAR:
                    return "my";
                default:
                    return "";
            }
        }
        at = g_utf8_next_char(at);
    }
    return "";
}

}  // namespace

std::string_view GuessLanguage(std::string_view text, std::string_view otherwise) {
    text = text.substr(0, kEnoughToGuess);
    if (const std::string_view language = LanguageOfScript(text); !language.empty())
        return language;
    std::array<int, std::size(kLanguages)> hits{};
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(" \t\n.,;:!?\"()"), text.size());
        for (std::size_t i = 0; i < hits.size(); ++i)
            hits[i] += Holds(kLanguages[i].small, text.substr(0, end)) ? 1 : 0;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const auto* const most = std::ranges::max_element(hits);
    return *most == 0 ? otherwise
                      : kLanguages[static_cast<std::size_t>(most - hits.begin())].language;
}

bool NeedsWhatFollows(std::string_view word, std::string_view language) {
    if (HoldsInAnyCase(kNeedsFollowing, word))
        return true;
    const auto* const own = std::ranges::find(kLanguages, language, &LanguageWords::language);
    return own != std::end(kLanguages) && HoldsInAnyCase(own->needsFollowing, word);
}

bool UsuallyEndsSentence(std::string_view word) {
    return Holds(kUsuallyEnds, word);
}

bool NeedsNumber(std::string_view word) {
    return Holds(kNeedsNumber, word) || word.ends_with("str");  // "Bahnhofstr. 5"
}

bool IsShortMonth(std::string_view word) {
    gchar* const small = g_utf8_strdown(word.data(), static_cast<gssize>(word.size()));
    const bool isMonth = Holds(kMonths, small);
    g_free(small);
    return isMonth;
}

bool MayEndSentence(std::string_view word) {
    return Holds(kMayEnd, word) || IsDottedInitials(word);
}

std::optional<bool> EndsBehind(std::string_view word, std::string_view previous) {
    const auto isThis = [word](const auto& one) { return one.first == word; };
    const auto* const found = std::ranges::find_if(kEndsBehind, isThis);
    if (found == std::end(kEndsBehind) || previous.empty())
        return std::nullopt;
    const bool isBehindNumber = g_ascii_isdigit(previous.back()) != 0;
    if (word == "kr" && !isBehindNumber)  // "anges i kr."
        return std::nullopt;
    if (found->second == "#")
        return isBehindNumber;
    if (found->second == "I")
        return previous.find_first_not_of("IVXLCDM") == std::string_view::npos;
    return found->second == previous;
}

bool MayBeOfName(std::string_view word, std::string_view language) {
    constexpr std::pair<std::string_view, std::string_view> kOfNames[] = {
        {"de", " Der Die Das Den Dem Du Da Dort "},
        {"fr", " Le La Les Du "},
        {"en", " Will "},
        {"es", " El La Los Las Lo "},
        {"it", " Le La Lo "},
        {"pt", " Da Das "},
        {"da", " De "}};
    if (language == "en" && word == "Will")  // "George F. Will"
        return true;
    bool isOther = false;
    for (const auto& [own, words] : kOfNames)
        if (Holds(words, word)) {
            if (own == language)
                return false;
            isOther = true;
        }
    return isOther;
}

bool GoesOnWithParticle(std::string_view behind) {
    return std::ranges::any_of(kGoesOn,
                               [behind](std::string_view one) { return behind.starts_with(one); });
}

bool SaysWhatWasQuoted(std::string_view behind) {
    constexpr std::string_view kEnds[] = {"।",  "۔", "።",  "。", "，", "！",
                                          "？", "“", "「", ".",  ","};
    std::size_t end = std::min(behind.size(), kSayingAmong);
    for (const std::string_view stop : kEnds)
        end = std::min(end, behind.find(stop));
    const std::string_view clause = behind.substr(0, end);
    for (std::size_t at = 0; at < clause.size();) {
        const std::size_t blank = std::min(clause.find(' ', at), clause.size());
        if (Holds(kSayings, clause.substr(at, blank - at)))
            return true;
        at = blank + 1;
    }
    const std::string_view close = clause.substr(0, kSayingClose);
    return close.find("知道") == std::string_view::npos &&
           std::ranges::any_of(kSayingsWithin, [close](std::string_view one) {
               return close.find(one) != close.npos;
           });
}

bool HasDottedOrdinals(std::string_view language) {
    return Holds(kDottedOrdinals, language);
}

bool BeginsSentences(std::string_view word) {
    return Holds(kBeginners, word);
}

bool IsTitle(std::string_view word) {
    return Holds(kTitles, word);
}
