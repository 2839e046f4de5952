// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>

namespace vantle::test {

/// A folder of the test's own that goes with its content.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "vantle-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("mkdtemp failed");
        m_path = std::filesystem::canonical(pattern).string();
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] const std::string &path() const { return m_path; }
    [[nodiscard]] std::filesystem::path path(const std::string &name) const
    {
        return std::filesystem::path(m_path) / name;
    }

    [[nodiscard]] QString pathText(const std::string &name) const
    {
        return QString::fromStdString(path(name).string());
    }

    std::filesystem::path write(const std::string &name, const QByteArray &content) const
    {
        std::ofstream file(path(name), std::ios::binary);
        file.write(content.constData(), content.size());
        if (!file.flush())
            throw std::runtime_error("can't write " + name);
        return path(name);
    }

    [[nodiscard]] QByteArray content(const std::string &name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return QByteArray::fromStdString({std::istreambuf_iterator<char>(file), {}});
    }

    [[nodiscard]] std::set<std::string> names() const
    {
        std::set<std::string> result;
        for (const auto &entry : std::filesystem::directory_iterator(path()))
            result.insert(entry.path().filename().string());
        return result;
    }

private:
    std::string m_path;
};

} // namespace vantle::test
