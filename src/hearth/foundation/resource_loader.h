// The hook through which documents ask for what they name: sheets, images, fonts, imports.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/text.h>

namespace ht {

/// What a loader found.
struct THtResource {
    TBytes Bytes;
    String Address; // from which the bytes came, behind all redirects
    String ContentType; // as it was told; empty when nobody told
};

/// The charset that a content type names ("text/html; charset=UTF-8"), in lower case, with the quotes that it
/// may stand in; empty if none.
HT_API String CharsetOfContentType(std::u16string_view contentType);

/// Finds the bytes of an address. The host decides which addresses may be read at all; a document never reads
/// anything by itself. What a document names is resolved from the address of the page or sheet that names it.
/// A loader is used by one thread at a time.
class HT_API IHtResourceLoader {
public:
    virtual ~IHtResourceLoader();

    /// The absolute address that `address` stands for where it is named by what lies at `base`; empty when it
    /// is none. One of a scheme that the loader does not know comes back as it is.
    virtual String Resolve(std::u16string_view base, std::u16string_view address) const = 0;
    /// True when the host lets documents read this absolute address.
    virtual bool Allows(std::u16string_view address) const = 0;
    /// Reads an absolute address. False, and an empty resource, for what is not allowed, not there or not to
    /// be read.
    virtual bool Load(std::u16string_view address, THtResource& resource) = 0;

protected:
    IHtResourceLoader() = default;
    IHtResourceLoader(const IHtResourceLoader&) = default;
    IHtResourceLoader& operator=(const IHtResourceLoader&) = default;
};

}
