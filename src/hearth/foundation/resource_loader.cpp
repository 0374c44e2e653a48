// What loaders of resources share.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/resource_loader.h>

namespace ht {

String CharsetOfContentType(std::u16string_view contentType)
{
    constexpr std::u16string_view kCharset = u"charset=";
    const String lower = String(contentType).ToLowerAscii();
    const std::size_t start = lower.View().find(kCharset);
    if (start == std::u16string_view::npos)
        return {};
    const std::u16string_view rest = lower.View().substr(start + kCharset.size());
    return String(TrimView(rest.substr(0, rest.find(u';'))));
}

IHtResourceLoader::~IHtResourceLoader() = default;

}
