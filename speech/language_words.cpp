#include "speech/language_words.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <functional>
#include <iterator>
#include <unordered_map>

namespace {

struct SmallWords {
    std::string_view language;
    std::string_view words;
};

// In small letters. Beside the commonest words those that neighbours write otherwise.
constexpr SmallWords kSmallWords[] = {
    {"en",
     "the of and to in is that it was for on are as with his they at be this from have or had by "
     "not "
     "but what all were when we there can an your which their said if do will each how them then "
     "she "
     "many some so these would other into has more her two like him see could no than been who its "
     "now "
     "did my should must"},
    {"de",
     "der die das und ist nicht ein eine einen einem einer eines zu den dem des mit auf von im "
     "sich "
     "für als auch es an werden wird aus er hat dass sie nach bei um am sind noch wie über so zum "
     "war "
     "haben nur oder aber vor zur bis mehr durch man dann wenn kann ihre sein wurde können diese "
     "dieser "
     "dieses sollte müssen ich wir kein keine"},
    {"nl",
     "de het een van en in is dat op te zijn met voor niet aan er om ook als dan maar bij of uit "
     "nog "
     "naar heeft ze deze wordt worden dit die door over kan kunnen hij ik je geen wel moet zal wat "
     "werd tot meer haar hun deze omdat wanneer"},
    {"da",
     "og at det er en et den til på af med for ikke der som de har var jeg han hun vi du fra kan "
     "skal "
     "vil om men eller efter ved så nu når hvis hvad hvor hvordan nogle nogen noget meget mere "
     "også kun "
     "blev blive bliver have havde sig mig dig op ud ind uden mellem gennem igen gør gøre sidste "
     "denne "
     "dette disse hvilke hvilken anden andet andre bruges bruge alle mod kunne ville skulle være "
     "været "
     "siger dag end ingen inden hver givet angiv angivet kendt fejl begynder findes"},
    {"nb",
     "og å det er en et den til på av med for ikke som de har var jeg han hun vi du fra kan skal "
     "vil om "
     "men eller etter ved så nå når hvis hva hvor hvordan noen noe mye mer også bare kun ble bli "
     "blir "
     "ha hadde seg meg deg opp ut inn uten mellom gjennom igjen gjør gjøre siste denne dette disse "
     "hvilke hvilken annen annet andre brukes bruke alle mot kunne ville skulle være vært sier dag "
     "enn "
     "ingen innen hver gitt angi angitt kjent feil begynner finnes velge"},
    {"sv",
     "och att det är en ett den till på av med för inte som de har var jag han hon vi du från kan "
     "ska "
     "skall vill om men eller efter vid så nu när vad var hur några någon något mycket mer också "
     "bara "
     "blev bli blir ha hade sig mig dig upp ut in utan mellan genom igen gör göra sista denna "
     "detta "
     "dessa vilka vilken annan annat andra används använda alla mot kunde ville skulle vara varit "
     "säger "
     "dag än ingen inom varje givet ange angiven känd fel börjar finns kommer"},
    {"fr",
     "le la les de des du un une et est que qui dans en pour pas au aux sur il elle ce cette ces "
     "par "
     "avec ne se son sa ses plus ou où mais comme si sont être fait ont été peut nous vous leur "
     "leurs "
     "même tout tous deux sans sous entre afin après avant lors doit peuvent"},
    {"es",
     "el la los las de del y en un una que es por con para no se su sus al lo como más pero o este "
     "esta "
     "estos estas si ha han son está están fue muy sin sobre también hasta hay donde cuando todo "
     "todos "
     "ser puede pueden entre desde él ella yo usted nosotros cada otro otra otros uno dos hacer "
     "según "
     "esto eso ese esa porque debe"},
    {"gl",
     "o a os as de do da dos das e en un unha que é por con para non se seu súa ao á no na nos nas "
     "como "
     "máis pero ou este esta estes estas si son está están foi moi sen sobre tamén ata hai onde "
     "cando "
     "todo todos ser pode poden entre desde el ela eu vostede cada outro outra outros dous facer "
     "segundo isto iso ese esa porque debe polo pola cos coa unha nin só"},
    {"pt",
     "o a os as de do da dos das e em um uma que é por com para não se seu sua seus suas ao à no "
     "na nos "
     "nas como mais mas ou este esta estes estas são está estão foi muito sem sobre também até há "
     "onde "
     "quando todo todos ser pode podem entre desde ele ela eles você eu cada outro outra outros "
     "dois "
     "fazer segundo isto isso esse essa porque deve pelo pela pelos numa num será não só tem têm"},
    {"ca",
     "el la els les de del dels i en un una que és per amb no se el seu seva al als ho com més "
     "però o "
     "aquest aquesta aquests aquestes si ha han són està fou molt sense sobre també fins hi on "
     "quan tot "
     "tots ser pot poden entre des ell ella jo vostè cada altre altra altres dos fer segons això "
     "perquè cal ha pel pels ens va"},
    {"it",
     "il lo la i gli le di del della dei delle e è un una che per non con si in al alla nel nella "
     "sono "
     "come più ma o questo questa questi queste se ha hanno da dal dalla su sul molto senza anche "
     "fino "
     "dove quando tutto tutti essere può possono tra fra lui lei io ogni altro altra altri due "
     "fare "
     "secondo ciò perché deve cui sia stato"},
    {"ro",
     "și de la în a al ai ale un o care este nu pe cu se să din pentru ce mai sunt ca fi fost dar "
     "sau "
     "acest această acești aceste dacă are au el ea eu după până foarte fără sub despre unde când "
     "tot "
     "toate poate pot între fiecare alt alte doi face prin lui îi va vor trebuie"},
    {"fi",
     "ja on ei se että joka kun ovat oli hän mutta niin myös tai kuin sen voi tämä tämän joita jos "
     "vain "
     "ole ollut jotka mitä sitä nyt vielä kaikki ennen jälkeen kanssa voidaan käytetään"},
    {"pl",
     "i w nie na to się że z do jest jak po ale o co za od tak przez dla czy być są był może które "
     "który która tego tym już lub oraz przy nad pod jego jej ich tylko jeśli można zostać"},
    {"cs",
     "a se v na je že to s z do i o k ve pro jako ale by po jsou který která které nebo tak si od "
     "už "
     "byl bylo až při za své jen co také není může podle jeho když aby tento této tuto pokud lze "
     "bude "
     "ze ke před více být pouze"},
    {"sk",
     "a sa v na je že to s z do i o k vo pre ako ale by po sú ktorý ktorá ktoré alebo tak si od už "
     "bol "
     "bolo až pri za svoje len čo tiež nie môže podľa jeho keď aby tento tejto túto ak možno bude "
     "zo ku "
     "pred viac byť iba"},
    {"sl",
     "in je v na se da za so ki z s pa ne po bi ni kot tudi ali ter lahko bo iz do ob med pri če "
     "še že "
     "od o ta to ko kaj kako kje njegov več zelo samo brez pred bilo bil biti ima niso smo ste sem "
     "nad "
     "vse vsak te tem mogoče"},
    {"hr",
     "i je u na se da za su koji koja koje s od ne po bi nije kao ili iz do ali što to već samo "
     "bez "
     "pred bilo bio biti ima nisu smo ste sam nad sve svaki te tko gdje uvjet mjesto vrijeme prije "
     "poslije nego također ovdje dvije uopće ako može mogu kad lijepo tijekom vrijednost datoteka "
     "trebalo želite"},
    {"sr",
     "i je u na se da za su koji koja koje sa od ne po bi nije kao ili iz do ali šta to već samo "
     "bez "
     "pred bilo bio biti ima nisu smo ste sam nad sve svaki ko gde uslov mesto vreme pre posle "
     "nego "
     "takođe ovde dve uopšte ako može mogu kad lepo tokom vrednost datoteka trebalo želite bilo "
     "preko "
     "и је у на се да за су који која које са од не по би није као или из до али шта то већ само "
     "без "
     "пред било био бити има нису смо сте сам сваки ко где место време пре после такође ако може"},
    {"hu",
     "a az és nem hogy egy is van ez de meg csak már ha mint volt kell azt vagy ezt még ami aki ki "
     "el "
     "minden lesz után lehet két között nagyon által"},
    {"tr",
     "ve bir bu da de için ile olarak daha çok en gibi kadar ne var olan değil ya o ki sonra ama "
     "veya "
     "her bunu tarafından ancak ise"},
    {"et",
     "ja on ei et see oli kui ka mis ta aga oma või nii kes seda siis juba ning selle ainult "
     "pärast "
     "kuid kõik võib"},
    {"lv",
     "un ir ka no par ar uz kas bet to tas kā arī vai pēc tiek pie nav var gan jau ja šo viņš būs "
     "lai"},
    {"lt",
     "ir yra kad į iš su ne tai kaip bet buvo ar jis apie po per dar tik nuo už šis ji galima arba "
     "jei"},
    {"ru",
     "и в не на что с он как это по но из у за от к для о же так или все его был есть до она бы "
     "если "
     "который которая которые только этот эта эти может быть при также уже еще ещё"},
    {"uk",
     "і в не на що з він як це по але із у за від до для про же так або всі його був є вона би "
     "якщо "
     "який яка які тільки цей ця ці може бути при також вже ще та й"},
    {"be",
     "і ў у не на што з ён як гэта па але за да для пра ж так або ўсе яго быў ёсць яна бы калі які "
     "якая якія толькі гэты можа быць пры таксама ўжо яшчэ"},
    {"bg",
     "и в не на че с той като това по но от за до се да е са или всички му беше има тя би ако "
     "който "
     "която които само този тази тези може при също вече още ще със към през след както бъде"},
    {"af",
     "die van en in is dat op te nie het hulle sy met vir ek jy ons wat word kan om ook as maar by "
     "uit "
     "nog na my baie sal moet daar tot hierdie deur oor hy aan n dit was hul want toe wees kom "
     "nuwe"},
    {"id",
     "dan yang di untuk dengan ini itu dari tidak pada adalah dalam akan ke oleh atau juga sudah"},
    {"vi", "và của là có không cho được các một trong những với này để người khi đã từ"},
    {"eu", "eta da du ez bat dira ere baina dute edo izan den duen hau zen egin"},
};
using Languages = std::bitset<std::size(kSmallWords)>;

const std::unordered_map<std::string_view, Languages>& LanguagesOfWords() {
    static const auto* const words = [] {
        auto* const all = new std::unordered_map<std::string_view, Languages>;
        for (std::size_t i = 0; i < std::size(kSmallWords); ++i)
            for (std::string_view rest = kSmallWords[i].words; !rest.empty();) {
                const std::size_t end = std::min(rest.find(' '), rest.size());
                (*all)[rest.substr(0, end)].set(i);
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        return all;
    }();
    return *words;
}

bool IsPlain(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

std::size_t EndOfWord(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() &&
           (IsPlain(text[at]) ? g_ascii_isalpha(text[at])
                              : g_unichar_isalpha(g_utf8_get_char(text.data() + at))) != 0)
        at += static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(text[at])]);
    return at;
}

}  // namespace

std::string InSmallLetters(std::string_view text) {
    std::string small;
    small.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (IsPlain(text[at])) {
            small += g_ascii_tolower(text[at++]);
            continue;
        }
        std::array<char, 6> bytes{};
        const int size =
            g_unichar_to_utf8(g_unichar_tolower(g_utf8_get_char(text.data() + at)), bytes.data());
        small.append(bytes.data(), static_cast<std::size_t>(size));
        at += static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(text[at])]);
    }
    return small;
}

std::vector<ShownByWords> LanguagesShownByWords(std::string_view small) {
    std::array<double, std::size(kSmallWords)> sums{};
    for (std::string_view rest = small; !rest.empty();) {
        const std::size_t size = EndOfWord(rest);
        const auto found = LanguagesOfWords().find(rest.substr(0, size));
        if (found != LanguagesOfWords().end())
            for (std::size_t i = 0; i < sums.size(); ++i)
                if (found->second[i])
                    sums[i] += 1.0 / static_cast<double>(found->second.count());
        rest.remove_prefix(size);
        if (!rest.empty())
            rest.remove_prefix(
                static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(rest.front())]));
    }
    std::vector<ShownByWords> shown;
    for (std::size_t i = 0; i < sums.size(); ++i)
        if (sums[i] > 0)
            shown.push_back({kSmallWords[i].language, sums[i]});
    std::ranges::sort(shown, std::ranges::greater(), &ShownByWords::sum);
    return shown;
}

bool IsShownByWords(std::string_view text, std::string_view language) {
    constexpr double kMoreThanChance = 1.5;
    const std::vector<ShownByWords> shown = LanguagesShownByWords(InSmallLetters(text));
    return !shown.empty() && shown.front().language == language &&
           shown.front().sum >= kMoreThanChance;
}

bool IsKnownByWords(std::string_view language) {
    return std::ranges::find(kSmallWords, language, &SmallWords::language) != std::end(kSmallWords);
}
