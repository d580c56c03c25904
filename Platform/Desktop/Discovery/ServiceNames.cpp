#include "Platform/Desktop/Discovery/ServiceNames.h"

#include <QStringDecoder>

#include <avahi-common/domain.h>

#include <array>

namespace farview
{

std::string replacingInvalidUTF8(const std::string& bytes)
{
    // A byte-order mark is a character of the name like any other.
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return text.toStdString();
}

std::string withoutTrailingDot(std::string name)
{
    if (name.ends_with('.'))
        name.pop_back();
    return name;
}

std::string fullServiceName(const ServiceName& service)
{
    std::array<char, AVAHI_DOMAIN_NAME_MAX> buffer{};
    const int status = avahi_service_name_join(buffer.data(), buffer.size(), service.name.c_str(),
                                               service.type.c_str(), service.domain.c_str());
    return status < 0 ? std::string() : std::string(buffer.data());
}

} // namespace farview
