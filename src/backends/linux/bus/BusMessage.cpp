#include "backends/linux/bus/BusMessage.h"

#include <algorithm>

namespace nocta {

namespace {

constexpr std::size_t fixedSize = 16; // bytes of the header before its fields
constexpr std::uint32_t maxSize = 1 << 20;

constexpr char methodCall = 1;
constexpr char noAutoStart = 2;
constexpr char protocolVersion = 1;

enum Field : unsigned char {
    pathField = 1,
    interfaceField = 2,
    memberField = 3,
    replySerialField = 5,
    destinationField = 6,
    signatureField = 8
};

std::size_t aligned(std::size_t position, std::size_t alignment) {
    return (position + alignment - 1) / alignment * alignment;
}

/// Writes values one after the other, least significant byte first, each aligned to its size.
class Writer {
public:
    std::string bytes;

    void number(std::uint32_t value) {
        bytes.resize(aligned(bytes.size(), 4));
        for (int shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>((value >> shift) & 0xff);
        }
    }
    void text(std::string_view value) {
        number(static_cast<std::uint32_t>(value.size()));
        bytes.append(value).append(1, '\0');
    }
    void signature(std::string_view value) {
        bytes += static_cast<char>(value.size());
        bytes.append(value).append(1, '\0');
    }
    void field(Field code, char type, std::string_view value) {
        bytes.resize(aligned(bytes.size(), 8));
        bytes += static_cast<char>(code);
        signature({&type, 1});
        type == 'g' ? signature(value) : text(value);
    }
};

} // namespace

std::string busCall(std::uint32_t serial, const BusQuestion& question) {
    Writer body;
    for (const auto& argument : question.arguments) {
        body.text(argument);
    }
    Writer fields;
    fields.field(pathField, 'o', question.path);
    fields.field(interfaceField, 's', question.interface);
    fields.field(memberField, 's', question.method);
    fields.field(destinationField, 's', question.service);
    if (!question.arguments.empty()) {
        fields.field(signatureField, 'g', std::string(question.arguments.size(), 's'));
    }
    Writer message;
    message.bytes = {'l', methodCall, noAutoStart, protocolVersion};
    message.number(static_cast<std::uint32_t>(body.bytes.size()));
    message.number(serial);
    message.number(static_cast<std::uint32_t>(fields.bytes.size()));
    message.bytes += fields.bytes;
    message.bytes.resize(aligned(message.bytes.size(), 8));
    return message.bytes + body.bytes;
}

std::optional<BusMessage> BusMessage::read(std::string_view bytes) {
    if (bytes.size() < fixedSize) {
        return std::nullopt;
    }
    BusMessage message(bytes);
    if (!message.isDamaged_ && message.size_ > bytes.size()) {
        return std::nullopt;
    }
    return message;
}

BusMessage::BusMessage(std::string_view bytes) : bytes_(bytes) {
    const auto bodySize = number(4);
    const auto fieldsSize = number(12);
    if ((bytes[0] != 'l' && bytes[0] != 'B') || bodySize > maxSize || fieldsSize > maxSize) {
        isDamaged_ = true;
        return;
    }
    type_ = static_cast<unsigned char>(bytes[1]);
    bodyStart_ = aligned(fixedSize + fieldsSize, 8);
    size_ = bodyStart_ + bodySize;
    if (size_ <= bytes.size()) {
        bytes_.resize(size_);
        readFields(fixedSize + fieldsSize);
    }
}

/// Returns 0 if fewer than four bytes are left.
std::uint32_t BusMessage::number(std::size_t position) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4 && position + 4 <= bytes_.size(); ++i) {
        const auto place = position + (bytes_[0] == 'l' ? 3 - i : i);
        value = (value << 8) | static_cast<unsigned char>(bytes_[place]);
    }
    return value;
}

void BusMessage::readFields(std::size_t end) {
    for (auto at = fixedSize; !isDamaged_ && at + 4 < end;) {
        const auto code = static_cast<unsigned char>(bytes_[at]);
        const auto type = bytes_[at + 1] == 1 ? bytes_[at + 2] : '\0';
        at += 4;
        if (type == 'g') {
            const std::size_t length = static_cast<unsigned char>(bytes_[at]);
            if (code == signatureField) {
                signature_ = bytes_.substr(at + 1, length);
            }
            at += length + 2;
        } else if (type == 'u' || type == 's' || type == 'o') {
            const auto value = number(at);
            if (code == replySerialField && type == 'u') {
                replySerial_ = value;
            }
            at += type == 'u' ? 4 : std::size_t{value} + 5;
        } else {
            isDamaged_ = true;
        }
        at = aligned(at, 8);
        isDamaged_ = isDamaged_ || at > aligned(end, 8);
    }
}

std::optional<std::string> BusMessage::string() const {
    const auto length = number(bodyStart_);
    if (isError() || signature_ != "s" || size_ < bodyStart_ + 4 + length) {
        return std::nullopt;
    }
    return bytes_.substr(bodyStart_ + 4, length);
}

std::optional<bool> BusMessage::booleanInVariant() const {
    constexpr std::string_view type("\1b\0", 3);
    if (isError() || signature_ != "v" || bytes_.compare(bodyStart_, type.size(), type) != 0) {
        return std::nullopt;
    }
    return number(bodyStart_ + 4) != 0;
}

} // namespace nocta
