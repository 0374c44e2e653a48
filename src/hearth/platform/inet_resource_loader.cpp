// Resources over HTTP.
// SPDX-License-Identifier: MIT
#include <hearth/platform/inet_resource_loader.h>

#include <hearth/platform/address_p.h>

#include <algorithm>

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

/// The server may read these as "." , "/" and "\", and so leave the folder that was allowed.
bool HidesPath(const String& address)
{
    const String lower = address.ToLowerAscii();
    const std::u16string_view path = lower.View().substr(0, lower.View().find(u'?'));
    for (const std::u16string_view hidden : {u"%2e", u"%2f", u"%5c", u"\\"}) {
        if (path.find(hidden) != path.npos)
            return true;
    }
    return false;
}

}

THtInetResourceLoader::THtInetResourceLoader(const String& baseAddress)
    : FBaseAddress(baseAddress)
{
}

THtInetResourceLoader::~THtInetResourceLoader() = default;

void THtInetResourceLoader::Allow(const String& address)
{
    FAllowed.Add(Canonical(address));
}

String THtInetResourceLoader::BaseAddress() const
{
    return FBaseAddress;
}

void THtInetResourceLoader::SetBaseAddress(const String& address)
{
    FBaseAddress = address;
}

String THtInetResourceLoader::Resolve(std::u16string_view address) const
{
    return detail::ResolveAddress(FBaseAddress, address);
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
    const String absolute = Resolve(address);
    if (!Allows(absolute) || absolute.Length() > THtInetClient::kMaxBytesAddress)
        return false;
    FClient.SecurityPolicy = spStrict;
    FClient.OnRedirect = [this](const String& target) { return Allows(target); };
    try {
        TBytes bytes = FClient.GetBytes(absolute);
        if (FClient.ResponseCode < 200 || FClient.ResponseCode > 299)
            return false;
        resource = {std::move(bytes), FClient.ResponseURL, FClient.ResponseContentType};
        return true;
    } catch (const EHtInetException&) {
        return false;
    }
}

}
