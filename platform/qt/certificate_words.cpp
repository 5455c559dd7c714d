#include "platform/qt/certificate_words.h"

namespace kestrune {
namespace {

QString reason(QWebEngineCertificateError::Type type) {
    using Error = QWebEngineCertificateError;
    switch (type) {
    case Error::CertificateCommonNameInvalid:
    case Error::CertificateNameConstraintViolation:
    case Error::CertificateNonUniqueName:
        return QStringLiteral("Its certificate is made out to another site.");
    case Error::CertificateDateInvalid:
        return QStringLiteral(
            "Its certificate has expired or is not valid yet. If many sites say so, the clock "
            "of this computer may be wrong.");
    case Error::CertificateAuthorityInvalid:
    case Error::CertificateInvalid:
        return QStringLiteral("Nobody whom this computer trusts vouches for its certificate.");
    case Error::CertificateRevoked:
        return QStringLiteral("Its certificate has been called back by those who issued it.");
    case Error::CertificateWeakSignatureAlgorithm:
    case Error::CertificateWeakKey:
    case Error::SslObsoleteVersion:
        return QStringLiteral("It protects the connection in a way that can be broken today.");
    case Error::SslPinnedKeyNotInCertificateChain:
    case Error::CertificateKnownInterceptionBlocked:
        return QStringLiteral("Somebody between this computer and the site reads the connection.");
    default:
        return QStringLiteral("Its certificate is faulty.");
    }
}

} // namespace

QString certificate_words(QWebEngineCertificateError::Type type, const QString& host,
                          const QString& details) {
    return QStringLiteral("It cannot be told whether this is really ") + host + QStringLiteral(". ") +
           reason(type) + QStringLiteral(" Somebody else may be listening, so the page was not loaded.\n(") +
           details + u')';
}

} // namespace kestrune
