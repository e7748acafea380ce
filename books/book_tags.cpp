#include "books/book_tags.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/chapterframe.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/tableofcontentsframe.h>
#include <taglib/textidentificationframe.h>
#include <taglib/xiphcomment.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#include "books/book_cover.h"
#include "books/tag_stream.h"
#include "foundation/whole_characters.h"
#include "speech/language_code.h"

namespace {

TagLib::String Utf8(const std::string& text) {
    return {text, TagLib::String::UTF8};
}

TagLib::ByteVector ByteVectorOf(const std::string& text) {
    return {text.data(), static_cast<unsigned int>(text.size())};
}

TagLib::ID3v2::TextIdentificationFrame* TextFrame(const char* id, const std::string& text) {
    auto* const frame = new TagLib::ID3v2::TextIdentificationFrame(id, TagLib::String::UTF8);
    frame->setText(Utf8(text));
    return frame;
}

std::string TrackText(const BookTags& tags) {
    return std::to_string(tags.track) + "/" + std::to_string(tags.tracks);
}

// Version 2 of the library finds the factory of its frames itself.
template <typename File>
File WithFrames(TagStream& stream) {
#if TAGLIB_MAJOR_VERSION < 2
    return File(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
#else
    return File(&stream, false);
#endif
}

constexpr int kAacFrame = 1024;  // of which one stands before the sound

// Players on ffmpeg's libraries take the length of a frame within a chapter's for a plain number
// and pass over chapters where that is not the same: from 128 bytes on, one of which tells the
// encoding.
constexpr std::size_t kLongestChapterTitle = 126;

// Frames belong to the tag that they are added to.
void AddChapterFrames(TagLib::ID3v2::Tag& tag, const std::vector<ChapterMark>& chapters) {
    constexpr unsigned int kNoOffset = 0xFFFFFFFF;
    TagLib::ByteVectorList ids;
    for (std::size_t i = 0; i < chapters.size(); ++i) {
        const TagLib::ByteVector id = ByteVectorOf("ch" + std::to_string(i));
        TagLib::ID3v2::FrameList title;
        title.append(TextFrame(
            "TIT2", std::string(WholeCharacters(chapters[i].title, kLongestChapterTitle))));
        tag.addFrame(new TagLib::ID3v2::ChapterFrame(
            id, static_cast<unsigned int>(chapters[i].begin),
            static_cast<unsigned int>(chapters[i].end), kNoOffset, kNoOffset, title));
        ids.append(id);
    }
    // An entry counts its children in one byte; more of them are in tables below the first.
    constexpr unsigned int kMostChildren = 255;
    auto* const top = new TagLib::ID3v2::TableOfContentsFrame("toc");
    top->setIsTopLevel(true);
    top->setIsOrdered(true);
    if (ids.size() <= kMostChildren) {
        top->setChildElements(ids);
    } else {
        unsigned int number = 0;
        TagLib::ByteVectorList part;
        const auto close = [&] {
            const TagLib::ByteVector id = ByteVectorOf("toc" + std::to_string(number++));
            auto* const table = new TagLib::ID3v2::TableOfContentsFrame(id, part);
            table->setIsOrdered(true);
            tag.addFrame(table);
            top->addChildElement(id);
            part.clear();
        };
        for (const TagLib::ByteVector& id : ids) {
            part.append(id);
            if (part.size() == kMostChildren)
                close();
        }
        if (!part.isEmpty())
            close();
    }
    tag.addFrame(top);
}

bool TagMp3(TagStream& stream, const BookTags& tags) {
    auto file = WithFrames<TagLib::MPEG::File>(stream);
    if (!file.isOpen())
        return false;
    TagLib::ID3v2::Tag& tag = *file.ID3v2Tag(true);
    while (!tag.frameList().isEmpty())
        tag.removeFrame(tag.frameList().front());
    for (const auto& [id, text] : {std::pair{"TIT2", tags.title},
                                   {"TPE1", tags.author},
                                   {"TALB", tags.album},
                                   {"TLAN", ThreeLetterLanguage(tags.language)}})
        if (!text.empty())
            tag.addFrame(TextFrame(id, text));
    if (tags.track > 0)
        tag.addFrame(TextFrame("TRCK", TrackText(tags)));
    if (!tags.cover.empty()) {
        auto* const picture = new TagLib::ID3v2::AttachedPictureFrame;
        picture->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
        picture->setMimeType(PictureType(tags.cover));
        picture->setPicture(ByteVectorOf(tags.cover));
        tag.addFrame(picture);
    }
    if (tags.chapters.size() > 1)
        AddChapterFrames(tag, tags.chapters);
    return file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripOthers, TagLib::ID3v2::v4);
}

TagLib::FLAC::Picture* XiphPicture(const std::string& cover) {
    auto* const picture = new TagLib::FLAC::Picture;
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setMimeType(PictureType(cover));
    picture->setData(ByteVectorOf(cover));
    return picture;
}

std::string ClockTime(long long milliseconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld.%03lld", milliseconds / 3600000,
                  milliseconds / 60000 % 60, milliseconds / 1000 % 60, milliseconds % 1000);
    return text;
}

void FillComments(TagLib::Ogg::XiphComment& comments, const BookTags& tags) {
    while (!comments.fieldListMap().isEmpty())
        comments.removeFields(comments.fieldListMap().begin()->first);
    comments.setTitle(Utf8(tags.title));
    comments.setArtist(Utf8(tags.author));
    comments.setAlbum(Utf8(tags.album));
    if (!tags.language.empty())
        comments.addField("LANGUAGE", Utf8(tags.language));
    if (tags.track > 0) {
        comments.addField("TRACKNUMBER", Utf8(std::to_string(tags.track)));
        comments.addField("TRACKTOTAL", Utf8(std::to_string(tags.tracks)));
    }
    for (std::size_t i = 0; tags.chapters.size() > 1 && i < tags.chapters.size(); ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "CHAPTER%03zu", i);
        comments.addField(Utf8(name), Utf8(ClockTime(tags.chapters[i].begin)));
        comments.addField(Utf8(std::string(name) + "NAME"), Utf8(tags.chapters[i].title));
    }
}

bool TagOpus(TagStream& stream, const BookTags& tags) {
    TagLib::Ogg::Opus::File file(&stream, false);
    if (!file.isValid())
        return false;
    FillComments(*file.tag(), tags);
    file.tag()->removeAllPictures();
    if (!tags.cover.empty())
        file.tag()->addPicture(XiphPicture(tags.cover));
    return file.save();
}

bool TagFlac(TagStream& stream, const BookTags& tags) {
    auto file = WithFrames<TagLib::FLAC::File>(stream);
    if (!file.isValid())
        return false;
    FillComments(*file.xiphComment(true), tags);
    file.removePictures();
    if (!tags.cover.empty())
        file.addPicture(XiphPicture(tags.cover));
    return file.save();
}

// What the encoder has put before and behind the sound, and how long that is.
std::string Gapless(const SoundLength& sound) {
    const std::int64_t whole = (sound.frames + kAacFrame - 1) / kAacFrame * kAacFrame;
    char text[80];
    std::snprintf(text, sizeof text, " 00000000 %08X %08llX %016llX", kAacFrame,
                  static_cast<unsigned long long>(whole - sound.frames),
                  static_cast<unsigned long long>(sound.frames));
    return text;
}

bool TagMp4(TagStream& stream, const BookTags& tags) {
    TagLib::MP4::File file(&stream, false);
    if (!file.isValid())
        return false;
    TagLib::MP4::Tag& tag = *file.tag();
    tag.setTitle(Utf8(tags.title));
    tag.setArtist(Utf8(tags.author));
    tag.setAlbum(Utf8(tags.album));
    if (tags.track > 0)
        tag.setItem("trkn", TagLib::MP4::Item(tags.track, tags.tracks));
    tag.removeItem("covr");
    if (!tags.cover.empty()) {
        const bool isPng = PictureType(tags.cover) == std::string_view("image/png");
        TagLib::MP4::CoverArtList covers;
        covers.append({isPng ? TagLib::MP4::CoverArt::PNG : TagLib::MP4::CoverArt::JPEG,
                       ByteVectorOf(tags.cover)});
        tag.setItem("covr", covers);
    }
    if (tags.sound.frames > 0)
        tag.setItem("----:com.apple.iTunes:iTunSMPB",
                    TagLib::StringList(Utf8(Gapless(tags.sound))));
    constexpr int kAudiobook = 2;
    tag.setItem("stik", TagLib::MP4::Item(kAudiobook));
    return file.save();
}

bool WriteTags(TagStream& stream, SoundType type, const BookTags& tags) {
    switch (type) {
        case SoundType::kMp3:
            return TagMp3(stream, tags);
        case SoundType::kOpus:
            return TagOpus(stream, tags);
        case SoundType::kFlac:
            return TagFlac(stream, tags);
        case SoundType::kM4b:
            return TagMp4(stream, tags);
        default:
            return true;
    }
}

}  // namespace

std::string WriteBookTags(const std::string& path, SoundType type, const BookTags& tags) {
    TagStream stream(path);
    const bool isWritten = stream.isOpen() && WriteTags(stream, type, tags);
    if (stream.Error() != 0)
        return std::strerror(stream.Error());
    return isWritten ? "" : "titles and chapters cannot be written";
}

std::string ChapterMetadata(const std::vector<ChapterMark>& chapters) {
    std::string text = ";FFMETADATA1\n";
    for (const ChapterMark& chapter : chapters) {
        text += "[CHAPTER]\nTIMEBASE=1/1000\nSTART=" + std::to_string(chapter.begin) +
                "\nEND=" + std::to_string(chapter.end) + "\ntitle=";
        for (const char character : chapter.title) {
            if (std::string_view("=;#\\\n").find(character) != std::string_view::npos)
                text += '\\';
            text += character;
        }
        text += '\n';
    }
    return text;
}
