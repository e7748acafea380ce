#include "speech/sample_sentence.h"

#include <algorithm>
#include <iterator>

#include "speech/text_language.h"

namespace {

struct Sample {
    std::string_view language;
    const char* sentence;
};
// Those of Hebrew, Turkmen, Chuvash, Nogai, Quenya and Sindarin are needed: eSpeak NG says no
// digits there.
constexpr Sample kSamples[] = {
    {"af", "Hallo, ek sal met hierdie stem vir u lees."},
    {"ar", "مرحبا، سأقرأ لك بهذا الصوت."},
    {"az", "Salam, sizə bu səslə oxuyacağam."},
    {"be", "Добры дзень, гэтым голасам я буду вам чытаць."},
    {"bg", "Здравейте, ще ви чета с този глас."},
    {"bn", "নমস্কার, আমি এই কণ্ঠে আপনাকে পড়ে শোনাব।"},
    {"bs", "Dobar dan, čitat ću vam ovim glasom."},
    {"ca", "Hola, et llegiré amb aquesta veu."},
    {"cs", "Dobrý den, tímto hlasem vám budu číst."},
    {"cv", "Сывлӑх сунатӑп, сире ҫак сасӑпа вуласа паратӑп."},
    {"cy", "Helo, byddaf yn darllen i chi yn y llais hwn."},
    {"da", "Hej, jeg læser op for dig med denne stemme."},
    {"de", "Guten Tag, mit dieser Stimme lese ich Ihnen vor."},
    {"el", "Γεια σας, θα σας διαβάζω με αυτή τη φωνή."},
    {"en", "Hello, I will read to you with this voice."},
    {"eo", "Saluton, mi legos al vi per ĉi tiu voĉo."},
    {"es", "Hola, le leeré con esta voz."},
    {"et", "Tere, ma loen teile ette selle häälega."},
    {"eu", "Kaixo, ahots honekin irakurriko dizut."},
    {"fa", "سلام، با این صدا برای شما می‌خوانم."},
    {"fi", "Hei, luen sinulle tällä äänellä."},
    {"fr", "Bonjour, je vais vous faire la lecture avec cette voix."},
    {"ga", "Dia duit, léifidh mé duit leis an nguth seo."},
    {"gu", "નમસ્તે, હું આ અવાજમાં તમારા માટે વાંચીશ."},
    {"he", "שלום, אקרא לך בקול הזה."},
    {"hi", "नमस्ते, मैं इस आवाज़ में आपके लिए पढ़ूँगा।"},
    {"hr", "Dobar dan, čitat ću vam ovim glasom."},
    {"hu", "Jó napot, ezen a hangon fogok felolvasni."},
    {"hy", "Բարև, ես այս ձայնով կկարդամ ձեզ համար։"},
    {"id", "Halo, saya akan membaca untuk Anda dengan suara ini."},
    {"is", "Halló, ég les fyrir þig með þessari rödd."},
    {"it", "Buongiorno, leggerò per lei con questa voce."},
    {"ja", "こんにちは、この声で読みます。"},
    {"ka", "გამარჯობა, ამ ხმით წაგიკითხავთ."},
    {"kk", "Сәлем, сізге осы дауыспен оқып беремін."},
    {"kn", "ನಮಸ್ಕಾರ, ಈ ಧ್ವನಿಯಲ್ಲಿ ನಿಮಗೆ ಓದುತ್ತೇನೆ."},
    {"ko", "안녕하세요, 이 목소리로 읽어 드리겠습니다."},
    {"la", "Salve, hac voce tibi legam."},
    {"lt", "Laba diena, skaitysiu jums šiuo balsu."},
    {"lv", "Labdien, es jums lasīšu šajā balsī."},
    {"mk", "Здраво, ќе ви читам со овој глас."},
    {"ml", "നമസ്കാരം, ഈ ശബ്ദത്തിൽ ഞാൻ നിങ്ങൾക്കായി വായിക്കും."},
    {"mr", "नमस्कार, मी या आवाजात तुमच्यासाठी वाचेन."},
    {"ms", "Helo, saya akan membaca untuk anda dengan suara ini."},
    {"nb", "Hei, jeg leser for deg med denne stemmen."},
    {"nl", "Hallo, met deze stem lees ik u voor."},
    {"nog", "Салам, сизге бу давыс пан окыйман."},
    {"pa", "ਸਤ ਸ੍ਰੀ ਅਕਾਲ, ਮੈਂ ਇਸ ਆਵਾਜ਼ ਵਿੱਚ ਤੁਹਾਡੇ ਲਈ ਪੜ੍ਹਾਂਗਾ।"},
    {"pl", "Dzień dobry, będę czytać tym głosem."},
    {"pt", "Olá, vou ler para si com esta voz."},
    {"qya", "Aiya, cendauvan len sina ómanen."},
    {"ro", "Bună ziua, vă voi citi cu această voce."},
    {"ru", "Здравствуйте, этим голосом я буду вам читать."},
    {"sjn", "Mae govannen, pedithon allen."},
    {"sk", "Dobrý deň, týmto hlasom vám budem čítať."},
    {"sl", "Dober dan, s tem glasom vam bom bral."},
    {"sq", "Përshëndetje, do t'ju lexoj me këtë zë."},
    {"sr", "Здраво, читаћу вам овим гласом."},
    {"sv", "Hej, jag läser för dig med den här rösten."},
    {"sw", "Habari, nitakusomea kwa sauti hii."},
    {"ta", "வணக்கம், இந்தக் குரலில் உங்களுக்குப் படிப்பேன்."},
    {"te", "నమస్కారం, ఈ గొంతుతో మీకు చదువుతాను."},
    {"th", "สวัสดี ฉันจะอ่านให้คุณฟังด้วยเสียงนี้"},
    {"tk", "Salam, size şu ses bilen okap bererin."},
    {"tr", "Merhaba, size bu sesle okuyacağım."},
    {"uk", "Добрий день, цим голосом я вам читатиму."},
    {"ur", "السلام علیکم، میں آپ کو اس آواز میں پڑھ کر سناؤں گا۔"},
    {"uz", "Salom, sizga shu ovozda oʻqib beraman."},
    {"vi", "Xin chào, tôi sẽ đọc cho bạn bằng giọng này."},
    {"yue", "你好，我會用呢把聲讀畀你聽。"},
    {"zh", "你好，我会用这个声音为你朗读。"},
};

}  // namespace

std::string SampleSentence(std::string_view languageTag) {
    const auto* const found =
        std::ranges::find(kSamples, LanguageOnly(languageTag), &Sample::language);
    return found == std::end(kSamples) ? "1, 2, 3, 4, 5." : found->sentence;
}
