// Sheets that come in only where a document needs them.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_extension.h>

#include <algorithm>
#include <vector>

namespace ht {

namespace {

std::vector<std::unique_ptr<TCSSExtension>>& Extensions()
{
    static std::vector<std::unique_ptr<TCSSExtension>> extensions;
    return extensions;
}

}

void TCSSExtension::RegisterExtension(std::span<const String> KeyClasses, const String& CSS)
{
    auto extension = std::make_unique<TCSSExtension>();
    for (const String& name : KeyClasses)
        extension->KeyClasses.Add(name);
    extension->CSS.Parse(CSS, 0);
    Extensions().push_back(std::move(extension));
}

void TCSSExtension::AddExtensions(const THtStringList& ClassList, TCSSStyleSheet& StyleSheet)
{
    for (const auto& extension : Extensions()) {
        const auto isUsed = [&](const String& name) { return ClassList.HasKey(name); };
        if (std::any_of(extension->KeyClasses.begin(), extension->KeyClasses.end(), isUsed))
            StyleSheet.Assign(extension->CSS);
    }
}

}
