#include "speech/sample_sentence.h"

#include <algorithm>
#include <iterator>

#include "speech/text_language.h"

namespace {

struct Sample {
    std::string_view language;
    const char* sentence;
};
constexpr Sample kSamples[] = {
    {"ar", "مرحبا، سأقرأ لك بهذا الصوت."},
    {"bg", "Здравейте, ще ви чета с този глас."},
    {"ca", "Hola, et llegiré amb aquesta veu."},
    {"cs", "Dobrý den, tímto hlasem vám budu číst."},
    {"da", "Hej, jeg læser op for dig med denne stemme."},
    {"de", "Guten Tag, mit dieser Stimme lese ich Ihnen vor."},
    {"el", "Γεια σας, θα σας διαβάζω με αυτή τη φωνή."},
    {"en", "Hello, I will read to you with this voice."},
    {"eo", "Saluton, mi legos al vi per ĉi tiu voĉo."},
    {"es", "Hola, le leeré con esta voz."},
    {"et", "Tere, ma loen teile ette selle häälega."},
    {"fi", "Hei, luen sinulle tällä äänellä."},
    {"fr", "Bonjour, je vais vous faire la lecture avec cette voix."},
    {"hi", "नमस्ते, मैं इस आवाज़ में आपके लिए पढ़ूँगा।"},
    {"hr", "Dobar dan, čitat ću vam ovim glasom."},
    {"hu", "Jó napot, ezen a hangon fogok felolvasni."},
    {"it", "Buongiorno, leggerò per lei con questa voce."},
    {"ja", "こんにちは、この声で読みます。"},
    {"ko", "안녕하세요, 이 목소리로 읽어 드리겠습니다."},
    {"lt", "Laba diena, skaitysiu jums šiuo balsu."},
    {"lv", "Labdien, es jums lasīšu šajā balsī."},
    {"nb", "Hei, jeg leser for deg med denne stemmen."},
    {"nl", "Hallo, met deze stem lees ik u voor."},
    {"pl", "Dzień dobry, będę czytać tym głosem."},
    {"pt", "Olá, vou ler para si com esta voz."},
    {"ro", "Bună ziua, vă voi citi cu această voce."},
    {"ru", "Здравствуйте, этим голосом я буду вам читать."},
    {"sk", "Dobrý deň, týmto hlasom vám budem čítať."},
    {"sl", "Dober dan, s tem glasom vam bom bral."},
    {"sv", "Hej, jag läser för dig med den här rösten."},
    {"tr", "Merhaba, size bu sesle okuyacağım."},
    {"uk", "Добрий день, цим голосом я вам читатиму."},
    {"vi", "Xin chào, tôi sẽ đọc cho bạn bằng giọng này."},
    {"zh", "你好，我会用这个声音为你朗读。"},
};

}  // namespace

std::string SampleSentence(std::string_view languageTag) {
    const auto* const found =
        std::ranges::find(kSamples, LanguageOnly(languageTag), &Sample::language);
    return found == std::end(kSamples) ? "1, 2, 3, 4, 5." : found->sentence;
}
