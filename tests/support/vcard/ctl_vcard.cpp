// The control side of the virtual card: its name and its mixer elements. Volumes live in the file
// `mixer` of the card's folder, a line "element left right" each, so that a test can read what a
// mixer set.
#include <alsa/asoundlib.h>
#include <alsa/control_external.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/files/unique_fd.h"
#include "tests/support/vcard/card_folder.h"
#include "tests/support/vcard/card_number.h"

namespace {

class VirtualControl {
public:
    explicit VirtualControl(int card) : folder_(card), card_(card) {}

    // 0, -ENOENT without such a card, -ENODEV when it has vanished.
    int Open(snd_ctl_t** control, const char* name, int mode);

    int Count() { return static_cast<int>(Elements().size()); }
    void Identify(unsigned int index, snd_ctl_elem_id_t* id);
    snd_ctl_ext_key_t Find(const snd_ctl_elem_id_t* id);
    const CardElement& Element(snd_ctl_ext_key_t key) { return Elements()[key]; }
    void Read(snd_ctl_ext_key_t key, long* volumes);
    void Write(snd_ctl_ext_key_t key, const long* volumes);

private:
    const std::vector<CardElement>& Elements() { return folder_.Settings().elements; }
    // What ALSA's simple mixer shows as the element's name.
    std::string ControlName(std::size_t index) {
        return Elements()[index].name + " Playback Volume";
    }
    bool ReadLine(const std::string& element, long* volumes) const;

    CardFolder folder_;
    int card_ = 0;
    snd_ctl_ext_t ext_{};
};

VirtualControl& ControlOf(snd_ctl_ext_t* ext) {
    return *static_cast<VirtualControl*>(ext->private_data);
}

const snd_ctl_ext_callback_t& ControlCallbacks() {
    static const snd_ctl_ext_callback_t callbacks = [] {
        snd_ctl_ext_callback_t table{};
        table.close = [](snd_ctl_ext_t* ext) { delete &ControlOf(ext); };
        table.elem_count = [](snd_ctl_ext_t* ext) { return ControlOf(ext).Count(); };
        table.elem_list = [](snd_ctl_ext_t* ext, unsigned int offset, snd_ctl_elem_id_t* id) {
            ControlOf(ext).Identify(offset, id);
            return 0;
        };
        table.find_elem = [](snd_ctl_ext_t* ext, const snd_ctl_elem_id_t* id) {
            return ControlOf(ext).Find(id);
        };
        table.get_attribute = [](snd_ctl_ext_t*, snd_ctl_ext_key_t, int* type, unsigned int* access,
                                 unsigned int* count) {
            *type = SND_CTL_ELEM_TYPE_INTEGER;
            *access = SND_CTL_EXT_ACCESS_READWRITE;
            *count = 2;
            return 0;
        };
        table.get_integer_info = [](snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* low,
                                    long* high, long* step) {
            *low = ControlOf(ext).Element(key).minimum;
            *high = ControlOf(ext).Element(key).maximum;
            *step = 1;
            return 0;
        };
        table.read_integer = [](snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* volumes) {
            ControlOf(ext).Read(key, volumes);
            return 0;
        };
        table.write_integer = [](snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* volumes) {
            ControlOf(ext).Write(key, volumes);
            return 1;
        };
        table.read_event = [](snd_ctl_ext_t*, snd_ctl_elem_id_t*, unsigned int*) {
            return -EAGAIN;
        };
        return table;
    }();
    return callbacks;
}

template <std::size_t Size>
void Copy(char (&to)[Size], const std::string& from) {
    std::snprintf(to, Size, "%s", from.c_str());
}

int VirtualControl::Open(snd_ctl_t** control, const char* name, int mode) {
    if (!folder_.Exists())
        return -ENOENT;
    if (::access((folder_.Path() + "/gone").c_str(), F_OK) == 0)
        return -ENODEV;
    ext_.version = SND_CTL_EXT_VERSION;
    ext_.card_idx = card_;
    Copy(ext_.id, "vcard" + std::to_string(card_));
    Copy(ext_.driver, "vcard");
    Copy(ext_.name, folder_.Settings().name);
    Copy(ext_.longname, folder_.Settings().name + " (virtual)");
    Copy(ext_.mixername, folder_.Settings().name + " mixer");
    ext_.poll_fd = -1;
    ext_.callback = &ControlCallbacks();
    ext_.private_data = this;
    const int result = snd_ctl_ext_create(&ext_, name, mode);
    if (result >= 0)
        *control = ext_.handle;
    return result;
}

void VirtualControl::Identify(unsigned int index, snd_ctl_elem_id_t* id) {
    snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
    snd_ctl_elem_id_set_name(id, ControlName(index).c_str());
}

snd_ctl_ext_key_t VirtualControl::Find(const snd_ctl_elem_id_t* id) {
    for (std::size_t index = 0; index < Elements().size(); ++index) {
        if (ControlName(index) == snd_ctl_elem_id_get_name(id))
            return index;
    }
    return SND_CTL_EXT_KEY_NOT_FOUND;
}

bool VirtualControl::ReadLine(const std::string& element, long* volumes) const {
    const std::string text = "\n" + ReadSmallFile(folder_.Path() + "/mixer");
    const std::size_t at = text.find("\n" + element + " ");
    return at != std::string::npos && std::sscanf(text.c_str() + at + element.size() + 2, "%ld %ld",
                                                  &volumes[0], &volumes[1]) == 2;
}

void VirtualControl::Read(snd_ctl_ext_key_t key, long* volumes) {
    volumes[0] = volumes[1] = Element(key).maximum;
    ReadLine(Element(key).name, volumes);
}

void VirtualControl::Write(snd_ctl_ext_key_t key, const long* volumes) {
    while (folder_.Settings().FindFault(CardFault::Kind::kDeaf))
        ::usleep(2000);
    std::string lines;
    for (std::size_t index = 0; index < Elements().size(); ++index) {
        long values[2] = {};
        Read(index, values);
        const long* kept = index == key ? volumes : values;
        lines += Elements()[index].name + " " + std::to_string(kept[0]) + " " +
                 std::to_string(kept[1]) + "\n";
    }
    const UniqueFd file(::open((folder_.Path() + "/mixer").c_str(),
                               O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    [[maybe_unused]] const ssize_t written = ::write(file.Get(), lines.data(), lines.size());
}

}  // namespace

extern "C" {
SND_CTL_PLUGIN_DEFINE_FUNC(vcard) {
    static_cast<void>(root);
    auto* control = new VirtualControl(CardNumberOf(conf));
    const int result = control->Open(handlep, name, mode);
    if (result < 0)
        delete control;
    return result;
}
SND_CTL_PLUGIN_SYMBOL(vcard)
}
