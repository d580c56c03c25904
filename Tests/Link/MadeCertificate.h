#pragma once

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <QSslCertificate>

#include <cstddef>
#include <memory>
#include <string>

namespace farview
{

/// A key of any kind with a certificate of any kind, as our own programs never make them.
struct MadeCertificate {
    struct Wish {
        /// A curve's name, "RSA" or "Ed25519".
        std::string key = "P-256";
        /// Seconds from now.
        long begins = -60;
        long ends = 3600;
        /// Bytes of an extension that nobody knows.
        std::size_t extension = 0;
    };

    std::shared_ptr<EVP_PKEY> key;
    std::shared_ptr<X509> certificate;

    explicit MadeCertificate(const Wish& wish) : key(keyOf(wish.key), EVP_PKEY_free)
    {
        certificate.reset(X509_new(), X509_free);
        X509* const made = certificate.get();
        X509_set_version(made, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(made), 1);
        X509_gmtime_adj(X509_getm_notBefore(made), wish.begins);
        X509_gmtime_adj(X509_getm_notAfter(made), wish.ends);
        X509_set_pubkey(made, key.get());
        if (wish.extension > 0)
            extend(wish.extension);
        const bool isEd25519 = wish.key == "Ed25519";
        X509_sign(made, key.get(), isEd25519 ? nullptr : EVP_sha256());
    }
    explicit MadeCertificate(const std::string& keyName) : MadeCertificate(Wish{.key = keyName}) {}

    std::string certificatePem() const
    {
        return written([&](BIO* out) { PEM_write_bio_X509(out, certificate.get()); });
    }
    std::string keyPem() const
    {
        return written([&](BIO* out) {
            PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
        });
    }
    std::string encryptedKeyPem(const std::string& password) const
    {
        return written([&](BIO* out) {
            PEM_write_bio_PKCS8PrivateKey(out, key.get(), EVP_aes_128_cbc(), password.data(),
                                          static_cast<int>(password.size()), nullptr, nullptr);
        });
    }
    QSslCertificate shown() const
    {
        return QSslCertificate(QByteArray::fromStdString(certificatePem()));
    }

private:
    static EVP_PKEY* keyOf(const std::string& name)
    {
        if (name == "RSA")
            return EVP_RSA_gen(2048);
        if (name == "Ed25519")
            return EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
        return EVP_EC_gen(name.c_str());
    }
    void extend(std::size_t size)
    {
        const std::shared_ptr<ASN1_OBJECT> kind(OBJ_txt2obj("1.2.3.4", 1), ASN1_OBJECT_free);
        const std::shared_ptr<ASN1_OCTET_STRING> data(ASN1_OCTET_STRING_new(),
                                                      ASN1_OCTET_STRING_free);
        const std::string bytes(size, 'x');
        ASN1_OCTET_STRING_set(data.get(), reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<int>(size));
        const std::shared_ptr<X509_EXTENSION> made(
            X509_EXTENSION_create_by_OBJ(nullptr, kind.get(), 0, data.get()), X509_EXTENSION_free);
        X509_add_ext(certificate.get(), made.get(), -1);
    }
    template <typename Write> static std::string written(Write write)
    {
        const std::shared_ptr<BIO> memory(BIO_new(BIO_s_mem()), BIO_free);
        write(memory.get());
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(memory.get(), &bytes);
        return {bytes, static_cast<std::size_t>(size)};
    }
};

} // namespace farview
