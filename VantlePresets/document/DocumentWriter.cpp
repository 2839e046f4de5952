// SPDX-License-Identifier: MIT
#include "VantlePresets/document/DocumentWriter.h"

#include "VantlePresets/document/DocumentError.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QStringEncoder>
#include <QtCore/QVarLengthArray>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstring>
#include <string>

namespace vantle::document {
namespace {

[[noreturn]] void refuseNumber(const char *name)
{
    throw EncodingError(std::string(name) + ": not a finite number");
}

template <class JsonWriter>
class WriterOf final : public DocumentWriter
{
public:
    void beginObject() override { m_json.StartObject(); }
    void endObject() override { m_json.EndObject(); }
    void beginArray() override { m_json.StartArray(); }
    void endArray() override { m_json.EndArray(); }
    void key(const char *name) override
    {
        m_json.Key(name, static_cast<rapidjson::SizeType>(std::strlen(name)));
    }

    void integer(const char *name, qint64 value) override
    {
        key(name);
        m_json.Int64(value);
    }

    void number(const char *name, double value) override
    {
        key(name);
        if (!m_json.Double(value))
            refuseNumber(name);
    }

    void boolean(const char *name, bool value) override
    {
        key(name);
        m_json.Bool(value);
    }

    void string(const char *name, QAnyStringView value) override
    {
        key(name);
        value.visit([this](auto view) {
            if constexpr (std::is_same_v<decltype(view), QStringView>)
                this->string(view);
            else
                this->string(view.toString());
        });
    }

    void string(QStringView value) override
    {
        QStringEncoder toUtf8(QStringConverter::Utf8);
        QVarLengthArray<char, 512> bytes(toUtf8.requiredSpace(value.size()));
        const char *const end = toUtf8.appendToBuffer(bytes.data(), value);
        m_json.String(bytes.constData(), static_cast<rapidjson::SizeType>(end - bytes.constData()));
    }

    void integers(const char *name, const QList<qint64> &values) override
    {
        key(name);
        m_json.StartArray();
        for (const qint64 value : values)
            m_json.Int64(value);
        m_json.EndArray();
    }

    QByteArray text() const { return {m_buffer.GetString(), static_cast<qsizetype>(m_buffer.GetSize())}; }

private:
    rapidjson::StringBuffer m_buffer;
    JsonWriter m_json{m_buffer};
};

/// Gathers tokens, each behind a mark of its kind and of a length that its bytes tell, and hashes them.
class HashingWriter final : public DocumentWriter
{
public:
    void beginObject() override { add('{'); }
    void endObject() override { add('}'); }
    void beginArray() override { add('['); }
    void endArray() override { add(']'); }
    void key(const char *name) override { addBytes('k', name, std::strlen(name)); }

    void integer(const char *name, qint64 value) override
    {
        key(name);
        addBytes('i', &value, sizeof value);
    }

    void number(const char *name, double value) override
    {
        if (!std::isfinite(value))
            refuseNumber(name);
        key(name);
        addBytes('n', &value, sizeof value);
    }

    void boolean(const char *name, bool value) override
    {
        key(name);
        add(value ? 't' : 'f');
    }

    void string(const char *name, QAnyStringView value) override
    {
        key(name);
        value.visit([this](auto view) {
            if constexpr (std::is_same_v<decltype(view), QStringView>)
                this->string(view);
            else
                this->addBytes('8', view.data(), static_cast<std::size_t>(view.size()));
        });
    }

    void string(QStringView value) override
    {
        if (value.isValidUtf16())
            addText(value);
        else // lone surrogates, which the text does not tell apart
            addText(QString::fromUtf8(value.toUtf8()));
    }

    void integers(const char *name, const QList<qint64> &values) override
    {
        key(name);
        addBytes('a', values.constData(), static_cast<std::size_t>(values.size()) * sizeof(qint64));
    }

    std::size_t hash() const
    {
        return qHashBits(m_tokens.constData(), static_cast<std::size_t>(m_tokens.size()));
    }

private:
    void add(char mark) { m_tokens.append(mark); }
    void addText(QStringView text)
    {
        addBytes('s', text.utf16(), static_cast<std::size_t>(text.size()) * sizeof(char16_t));
    }
    void addBytes(char mark, const void *bytes, std::size_t size)
    {
        add(mark);
        m_tokens.append(reinterpret_cast<const char *>(&size), sizeof size);
        m_tokens.append(static_cast<const char *>(bytes), static_cast<qsizetype>(size));
    }

    QVarLengthArray<char, 4096> m_tokens;
};

template <class Writer>
QByteArray encodeWith(const std::function<void(DocumentWriter &)> &write)
{
    Writer writer;
    write(writer);
    return writer.text();
}

} // namespace

QByteArray encode(Format format, const std::function<void(DocumentWriter &)> &write)
{
    using Compact = WriterOf<rapidjson::Writer<rapidjson::StringBuffer>>;
    using Pretty = WriterOf<rapidjson::PrettyWriter<rapidjson::StringBuffer>>;
    return format == Format::pretty ? encodeWith<Pretty>(write) : encodeWith<Compact>(write);
}

std::size_t hashOf(const std::function<void(DocumentWriter &)> &write)
{
    HashingWriter writer;
    write(writer);
    return writer.hash();
}

} // namespace vantle::document
