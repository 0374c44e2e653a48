// Resources over HTTP.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/resource_loader.h>
#include <hearth/platform/http_client.h>
#include <hearth/runtime/array.h>

namespace ht {

/// Reads the http and https addresses that its host allowed, under the strict policy. Redirects lead to
/// allowed addresses only. At first nothing is allowed.
class HT_API THtInetResourceLoader : public IHtResourceLoader {
public:
    ~THtInetResourceLoader() override;

    /// Allows an address and all below it: "https://a.example/" is a whole server, "https://a.example/pages"
    /// a page and the folder of that name. Throws EHtInetException for what is no address.
    void Allow(const String& address);

    String Resolve(std::u16string_view base, std::u16string_view address) const override;
    bool Allows(std::u16string_view address) const override;
    /// Statuses other than 2xx are a miss.
    bool Load(std::u16string_view address, THtResource& resource) override;

    /// For time-outs, authorities and limits. Its policy and OnRedirect are set by the loader.
    THtInetClient& Client() noexcept { return FClient; }

private:
    THtInetClient FClient;
    TArray<String> FAllowed; // in the one spelling of addresses that mean the same
};

}
