// Sheets that come in only where a document needs them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/string_list.h>
#include <hearth/styling/css/style_sheet.h>

#include <span>

namespace ht {

/// A sheet and the classes that call for it. The list is global: register before documents are styled.
class HT_API TCSSExtension : public TObject {
public:
    static void RegisterExtension(std::span<const String> KeyClasses, const String& CSS);
    /// Assigns each sheet of which a class is in the list.
    static void AddExtensions(const THtStringList& ClassList, TCSSStyleSheet& StyleSheet);

    TArray<String> KeyClasses;
    TCSSStyleSheet CSS;
};

}
