#include "Link/Keys/KeyMaking.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <array>
#include <memory>
#include <string_view>

namespace farview
{

namespace
{

constexpr const char* curve = "P-256";
constexpr int thirdVersion = 2; // as X.509 counts

template <auto release> struct Release {
    template <typename Value> void operator()(Value* value) const { release(value); }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO_free>>;

bool fill(X509& certificate, EVP_PKEY& key)
{
    constexpr std::array<unsigned char, 7> commonName{'f', 'a', 'r', 'v', 'i', 'e', 'w'};
    X509_NAME* const name = X509_get_subject_name(&certificate);
    return X509_set_version(&certificate, thirdVersion) == 1 &&
           ASN1_INTEGER_set(X509_get_serialNumber(&certificate), 1) == 1 &&
           ASN1_TIME_set_string_X509(X509_getm_notBefore(&certificate), "20000101000000Z") == 1 &&
           ASN1_TIME_set_string_X509(X509_getm_notAfter(&certificate), "99991231235959Z") == 1 &&
           X509_set_pubkey(&certificate, &key) == 1 &&
           X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, commonName.data(),
                                      static_cast<int>(commonName.size()), -1, 0) == 1 &&
           X509_set_issuer_name(&certificate, name) == 1 &&
           X509_sign(&certificate, &key, EVP_sha256()) > 0;
}

bool isOnCurve(const EVP_PKEY& key)
{
    std::array<char, 32> name{};
    return EVP_PKEY_is_a(&key, "EC") == 1 &&
           EVP_PKEY_get_group_name(&key, name.data(), name.size(), nullptr) == 1 &&
           std::string_view(name.data()) == "prime256v1";
}

/// A key that asks for a password is none: nobody is there to be asked.
int noPassword(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*data*/) { return -1; }

} // namespace

std::string makeKeyAndCertificate()
{
    const Key key(EVP_EC_gen(curve));
    const Certificate certificate(X509_new());
    const Memory memory(BIO_new(BIO_s_mem()));
    if (!key || !certificate || !memory || !fill(*certificate, *key) ||
        PEM_write_bio_PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) !=
            1 ||
        PEM_write_bio_X509(memory.get(), certificate.get()) != 1)
        return {};
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

bool isKeyAndCertificate(const std::string& pem)
{
    const auto open = [&] {
        return Memory(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    };
    const Key key(PEM_read_bio_PrivateKey(open().get(), nullptr, noPassword, nullptr));
    const Certificate certificate(PEM_read_bio_X509(open().get(), nullptr, noPassword, nullptr));
    return key && certificate && isOnCurve(*key) &&
           X509_check_private_key(certificate.get(), key.get()) == 1;
}

} // namespace farview
