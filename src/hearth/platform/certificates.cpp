// Client certificates in files, read and chosen with OpenSSL.
// SPDX-License-Identifier: MIT
#include <hearth/platform/certificates_p.h>

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace ht {

THtClientCertificate::~THtClientCertificate() = default;

namespace detail {

namespace {

namespace fs = std::filesystem;

template <auto Free> struct Freeing {
    template <class T> void operator()(T* object) const noexcept { Free(object); }
};
void FreeChain(STACK_OF(X509) * chain) noexcept
{
    sk_X509_pop_free(chain, X509_free);
}
using Bio = std::unique_ptr<BIO, Freeing<BIO_free_all>>;
using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using CertificateStack = std::unique_ptr<STACK_OF(X509), Freeing<FreeChain>>;
using Key = std::unique_ptr<EVP_PKEY, Freeing<EVP_PKEY_free>>;
using Name = std::unique_ptr<X509_NAME, Freeing<X509_NAME_free>>;

/// The leaf first, then those that signed it.
using Chain = std::vector<Certificate>;

Chain ReadPem(BIO* file, std::string& password)
{
    Chain chain;
    while (X509* read = PEM_read_bio_X509(file, nullptr, nullptr, password.data()))
        chain.emplace_back(read);
    if (chain.empty() || BIO_reset(file) != 0)
        return {};
    // The password is given in any case: without one OpenSSL would ask on the terminal.
    const Key key(PEM_read_bio_PrivateKey(file, nullptr, nullptr, password.data()));
    return key && X509_check_private_key(chain.front().get(), key.get()) == 1 ? std::move(chain) : Chain();
}

Chain ReadPkcs12(BIO* file, const std::string& password)
{
    const std::unique_ptr<PKCS12, Freeing<PKCS12_free>> archive(d2i_PKCS12_bio(file, nullptr));
    EVP_PKEY* key = nullptr;
    X509* leaf = nullptr;
    STACK_OF(X509)* others = nullptr;
    const bool read = archive && PKCS12_parse(archive.get(), password.c_str(), &key, &leaf, &others) == 1;
    const Key keyOwner(key);
    Certificate leafOwner(leaf);
    const CertificateStack othersOwner(others);
    if (!read || !key || !leaf)
        return {};
    Chain chain;
    chain.push_back(std::move(leafOwner));
    while (X509* next = others ? sk_X509_shift(others) : nullptr)
        chain.emplace_back(next);
    return chain;
}

String TextOf(const X509_NAME* name)
{
    const Bio text(BIO_new(BIO_s_mem()));
    if (!text || X509_NAME_print_ex(text.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB) < 0)
        return {};
    char* bytes = nullptr;
    const long count = BIO_get_mem_data(text.get(), &bytes);
    return count > 0 ? String::FromUtf8({bytes, static_cast<std::size_t>(count)}) : String();
}

std::vector<Name> NamesOf(const std::vector<std::string>& encoded)
{
    std::vector<Name> names;
    for (const std::string& bytes : encoded) {
        const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
        if (X509_NAME* name = d2i_X509_NAME(nullptr, &p, static_cast<long>(bytes.size())))
            names.emplace_back(name);
    }
    return names;
}

bool IsAccepted(const Chain& chain, const std::vector<Name>& issuers)
{
    return std::any_of(chain.begin(), chain.end(), [&](const Certificate& certificate) {
        return std::any_of(issuers.begin(), issuers.end(), [&](const Name& issuer) {
            return X509_NAME_cmp(X509_get_issuer_name(certificate.get()), issuer.get()) == 0;
        });
    });
}

bool HasEnding(const fs::path& file, std::initializer_list<std::u16string_view> endings)
{
    const String ending = String::FromUtf8(file.extension().string());
    return std::any_of(endings.begin(), endings.end(),
        [&](std::u16string_view candidate) { return SameText(ending, candidate); });
}

bool IsPkcs12(const fs::path& file)
{
    return HasEnding(file, {u".p12", u".pfx"});
}

std::vector<fs::path> FilesOf(const fs::path& store)
{
    std::error_code missing;
    if (!fs::is_directory(store, missing))
        return {store};
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(store, missing), end; !missing && entry != end;
         entry.increment(missing)) {
        if (IsPkcs12(entry->path()) || HasEnding(entry->path(), {u".pem"}))
            files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

Chain ReadChain(const fs::path& path, std::string password)
{
    const Bio file(BIO_new_file(path.c_str(), "rb"));
    if (!file)
        return {};
    return IsPkcs12(path) ? ReadPkcs12(file.get(), password) : ReadPem(file.get(), password);
}

/// Called in the handshake when the server asks and nobody has set a certificate. None is set here either:
/// the client chooses one for its next attempt, or goes on without.
int NoteCertificateRequest(SSL* connection, X509**, EVP_PKEY**)
{
    SSL_CTX* const context = SSL_get_SSL_CTX(connection);
    auto& request = *static_cast<CertificateRequest*>(SSL_CTX_get_app_data(context));
    try {
        request.Asked = true;
        request.Issuers.clear();
        const STACK_OF(X509_NAME)* const names = SSL_get0_peer_CA_list(connection);
        for (int i = 0; i < sk_X509_NAME_num(names); ++i) {
            unsigned char* bytes = nullptr;
            const int count = i2d_X509_NAME(sk_X509_NAME_value(names, i), &bytes);
            if (count > 0)
                request.Issuers.emplace_back(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(count));
            OPENSSL_free(bytes);
        }
    } catch (...) {
        request.Issuers
            .clear(); // no memory for names: the certificates will be offered without regard to them
    }
    return request.EndsHandshake ? -1 : 0;
}

}

CertificateList FindCertificates(
    const String& store, const String& password, const std::vector<std::string>& issuers)
{
    CertificateList list;
    if (store.IsEmpty())
        return list;
    const std::vector<Name> names = NamesOf(issuers);
    for (const fs::path& file : FilesOf(store.ToUtf8())) {
        const Chain chain = ReadChain(file, password.ToUtf8());
        if (chain.empty() || (!names.empty() && !IsAccepted(chain, names)))
            continue;
        auto certificate = std::make_unique<THtClientCertificate>();
        certificate->FileName = String::FromUtf8(file.string());
        certificate->Password = password;
        certificate->IsPkcs12 = IsPkcs12(file);
        certificate->Subject = TextOf(X509_get_subject_name(chain.front().get()));
        certificate->Issuer = TextOf(X509_get_issuer_name(chain.front().get()));
        list.push_back(std::move(certificate));
    }
    ERR_clear_error(); // files that were passed over: whoever asks OpenSSL next must not get their errors
    return list;
}

void WatchCertificateRequest(void* context, CertificateRequest& request)
{
    auto* const tls = static_cast<SSL_CTX*>(context);
    SSL_CTX_set_app_data(tls, &request);
    SSL_CTX_set_client_cert_cb(tls, NoteCertificateRequest);
}

}

}
