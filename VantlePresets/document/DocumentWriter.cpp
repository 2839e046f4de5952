// SPDX-License-Identifier: MIT
#include "VantlePresets/document/DocumentWriter.h"

#include "VantlePresets/document/DocumentError.h"

#include <QtCore/QStringEncoder>
#include <QtCore/QVarLengthArray>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstring>
#include <string>

namespace vantle::document {
namespace {

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
            throw EncodingError(std::string(name) + ": not a finite number");
    }

    void boolean(const char *name, bool value) override
    {
        key(name);
        m_json.Bool(value);
    }

    void string(const char *name, QStringView value) override
    {
        key(name);
        string(value);
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

} // namespace vantle::document
