// Keeps the settings of a program in JSON: reads them into objects, changes them, and prints them again.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

using ht::operator""_s;

enum TTheme : std::uint8_t { thLight, thDark };
template <> struct ht::TEnumTraits<TTheme> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TTheme";
};

struct TWindow {
    std::int32_t Width = 640;
    std::int32_t Height = 480;
};

class TSettings : public ht::TObject {
public:
    static constexpr ht::TClassInfo kClassInfo{u"TSettings", &ht::TObject::kClassInfo};
    const ht::TClassInfo& ClassInfo() const override { return kClassInfo; }

    const ht::String& Owner() const { return FOwner; }
    void SetOwner(const ht::String& value) { FOwner = value; }
    ht::TStringList& RecentFiles() const { return *FRecentFiles; }

    TTheme Theme = thLight;
    TWindow Window;
    ht::TDateTime Saved = 0;

private:
    ht::String FOwner;
    std::unique_ptr<ht::TStringList> FRecentFiles = std::make_unique<ht::TStringList>();
};

/// Tells which members belong into the file.
void RegisterSettings()
{
    ht::TRttiContext::Register<TWindow>().Field(u"Width", &TWindow::Width).Field(u"Height", &TWindow::Height);
    ht::TRttiContext::Register<TSettings>()
        .Property(u"Owner", &TSettings::Owner, &TSettings::SetOwner)
        .Property(u"RecentFiles", &TSettings::RecentFiles)
        .Field(u"Theme", &TSettings::Theme, ht::mvPublished)
        .Field(u"Window", &TSettings::Window, ht::mvPublished)
        .DateField(u"Saved", &TSettings::Saved, ht::mvPublished);
}

int main(int argc, char** argv)
{
    std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
    if (!file) {
        std::cerr << "usage: save_settings SETTINGS.json\n";
        return 2;
    }
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    RegisterSettings();
    try {
        TSettings settings;
        ht::THtJSONSerializer serializer;
        serializer.UnknownMembers = ht::juRefuse;
        serializer.Spaces = 2;
        serializer.Deserialize(ht::String::FromUtf8(bytes), settings);
        settings.RecentFiles().Insert(0, u"harvest.json"_s);
        settings.Window.Width += 100;
        std::cout << serializer.Serialize(settings).ToUtf8() << '\n';
    } catch (const ht::Exception& error) {
        std::cerr << error.what() << '\n'; // names the member that does not fit
        return 1;
    }
}
