#include "fuzz/targets.h"

#include "library/product_profile.h"
#include "platform/code_page.h"
#include "platform/decoding.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"

namespace kestrune::fuzz {
namespace {

struct Profile {
    MemoryUserInterface ui;
    MemoryFiles files;
    FrmPreference boxes{ui, files};
};

bool hides_an_element(const FrmPreference& profile) {
    const auto& fields = ProfileFields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string value = lower_ascii((profile.*fields[i].box).Text.get());
        for (std::size_t later = i + 1; later < fields.size(); ++later) {
            if (value.find("<" + lower_ascii(fields[later].element) + ">") != std::string::npos)
                return true;
        }
    }
    return false;
}

} // namespace

void read_profiles(std::string_view input) {
    const std::string text = decode_xml(input);
    require(is_utf8(text), "a decoded file is UTF-8");
    for (const ProfileField& field : ProfileFields()) {
        if (!field.pad_tag.empty())
            require(GetTagValue(text, field.pad_tag) == plain_tag_value(text, field.pad_tag),
                    "an import copies what stands between the first tag and the next closing one");
    }
    Profile profile;
    ReadProfileXml(text, profile.boxes);
    for (const ProfileField& field : ProfileFields())
        require((profile.boxes.*field.box).Text.get() == plain_tag_value(text, field.element),
                "a box holds the value of its element");
    const std::string file = BuildProfileXml(profile.boxes);
    require(file.starts_with("<?xml version=\"1.0\"?>\r\n") && file.ends_with("\r\n</Kestrune>"),
            "the profile's file begins with the declaration and ends without a line break");
    if (hides_an_element(profile.boxes))
        return;
    Profile again;
    ReadProfileXml(text_of_bytes(bytes_of_text(file)), again.boxes);
    for (const ProfileField& field : ProfileFields())
        require((again.boxes.*field.box).Text.get() == (profile.boxes.*field.box).Text.get(),
                "a profile written and read back is the same profile");
}

} // namespace kestrune::fuzz
