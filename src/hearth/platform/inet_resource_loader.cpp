// Resources over HTTP.
// SPDX-License-Identifier: MIT
#include <hearth/platform/inet_resource_loader.h>

#include <hearth/platform/address_p.h>

#include <algorithm>
#include <utility>

namespace ht {

namespace {

/// One spelling for all that mean the same address.
String Canonical(std::u16string_view address)
{
    return String::FromUtf8(detail::CrackAddress(address).Text());
}

bool IsBelow(std::u16string_view address, std::u16string_view top) noexcept
{
    if (!address.starts_with(top))
        return false;
    return top.ends_with(u'/') || address.size() == top.size()
        || std::u16string_view(u"/?").find(address[top.size()]) != std::u16string_view::npos;
}

/// True for an encoded ".", "/" or "\" behind "%", also when the "%" of that is encoded again: servers decode
/// once or twice.
bool IsHiddenLetter(std::u16string_view code) noexcept
{
    while (code.starts_with(u"25"))
        code.remove_prefix(2);
    return code.starts_with(u"2e") || code.starts_with(u"2f") || code.starts_with(u"5c");
}

/// Some servers cut off what stands behind ";", and read "..;" as "..".
bool HasDotSegment(std::u16string_view path) noexcept
{
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(u'/'), path.size());
        std::u16string_view segment = path.substr(0, end);
        segment = segment.substr(0, std::min(segment.find(u';'), segment.find(u"%3b")));
        if (segment == u"." || segment == u"..")
            return true;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return false;
}

/// The server may read the path as one with "." or "..", and so leave the folder that was allowed.
bool HidesPath(const String& address)
{
    const String lower = address.ToLowerAscii();
    const std::u16string_view path = lower.View().substr(0, lower.View().find(u'?'));
    for (std::size_t at = path.find(u'%'); at != path.npos; at = path.find(u'%', at + 1)) {
        if (IsHiddenLetter(path.substr(at + 1)))
            return true;
    }
    return path.find(u'\\') != path.npos || HasDotSegment(path);
}

}

THtInetResourceLoader::~THtInetResourceLoader() = default;

void THtInetResourceLoader::Allow(const String& address)
{
    FAllowed.Add(Canonical(address));
}

String THtInetResourceLoader::Resolve(std::u16string_view base, std::u16string_view address) const
{
    return detail::ResolveAddress(base, address);
}

bool THtInetResourceLoader::Allows(std::u16string_view address) const
{
    try {
        const String canonical = Canonical(address);
        return !HidesPath(canonical) && std::any_of(FAllowed.begin(), FAllowed.end(), [&](const String& top) {
            return IsBelow(canonical, top);
        });
    } catch (const EHtInetException&) {
        return false;
    }
}

bool THtInetResourceLoader::Load(std::u16string_view address, THtResource& resource)
{
    resource = {};
    if (!Allows(address) || std::cmp_greater(address.size(), THtInetClient::kMaxBytesAddress))
        return false;
    FClient.SecurityPolicy = spStrict;
    FClient.OnRedirect = [this](const String& target) { return Allows(target); };
    try {
        TBytes bytes = FClient.GetBytes(String(address));
        if (FClient.ResponseCode < 200 || FClient.ResponseCode > 299)
            return false;
        resource = {std::move(bytes), FClient.ResponseURL, FClient.ResponseContentType};
        return true;
    } catch (const EHtInetException&) {
        return false;
    }
}

}
