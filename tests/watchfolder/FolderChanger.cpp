// SPDX-License-Identifier: MIT
// The other process of the model-based tests. Changes the working directory as the lines of its standard
// input say, and answers each with "done":
//   random SEED COUNT     random operations on files and directories
//   burst COUNT           creates as many files and removes most of them
//   write FILE TEXT       replaces a file's content in place
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

namespace {

void write(const fs::path &path, const std::string &text, std::ios::openmode mode = std::ios::trunc)
{
    std::ofstream(path, std::ios::out | mode) << text;
}

/// Operations on a small set of names, so that they meet each other; many fail, as they would in life.
class RandomChanges
{
public:
    explicit RandomChanges(unsigned seed) : m_random(seed) {}

    void run(int count)
    {
        for (int i = 0; i < count; ++i)
            change();
    }

private:
    unsigned pick(unsigned choices) { return static_cast<unsigned>(m_random() % choices); }

    fs::path directory()
    {
        fs::path path = ".";
        for (unsigned depth = pick(4); depth > 0; --depth)
            path /= "d" + std::to_string(pick(3));
        return path;
    }
    fs::path file() { return directory() / ("f" + std::to_string(pick(12))); }

    void change()
    {
        std::error_code ignored;
        switch (pick(19)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return write(file(), "new");
        case 4:
        case 5:
            return write(file(), "more", std::ios::app);
        case 6:
            return fs::resize_file(file(), pick(3), ignored);
        case 7:
            return fs::rename(file(), file(), ignored);
        case 8: {
            const fs::path target = file();
            const fs::path temporary = target.parent_path() / ".tmp";
            write(temporary, "replaced");
            return fs::rename(temporary, target, ignored);
        }
        case 9:
        case 10:
            fs::remove(file(), ignored);
            return;
        case 11:
        case 12:
            fs::create_directories(directory(), ignored);
            return;
        case 13:
            return removeTree(directory());
        case 14:
            return fs::rename(directory(), directory(), ignored);
        case 15:
            return fs::create_hard_link(file(), file(), ignored);
        case 16: {
            // A directory gives way to a link to another, or to where it went.
            const fs::path path = directory();
            const fs::path other = path.parent_path() / ("d" + std::to_string(pick(3)));
            if (pick(2) == 0)
                fs::rename(path, other, ignored);
            removeTree(path);
            return fs::create_directory_symlink(other.filename(), path, ignored);
        }
        case 17:
            return fs::permissions(file(), fs::perms(0600 + 044 * pick(2)), ignored);
        default:
            return fs::permissions(directory(), fs::perms(0700 + 055 * pick(2)), ignored);
        }
    }

    void removeTree(const fs::path &path)
    {
        std::error_code ignored;
        if (path != ".")
            fs::remove_all(path, ignored);
    }

    std::mt19937 m_random;
};

void burst(int count)
{
    for (int i = 0; i < count; ++i)
        write("b" + std::to_string(i), "");
    for (int i = 0; i < count; ++i) {
        if (i % 100 != 0)
            fs::remove("b" + std::to_string(i));
    }
}

} // namespace

int main()
{
    std::string line;
    while (std::getline(std::cin, line)) {
        std::istringstream words(line);
        std::string command, name, text;
        int number = 0;
        int seed = 0;
        words >> command;
        if (command == "random" && words >> seed >> number)
            RandomChanges(static_cast<unsigned>(seed)).run(number);
        else if (command == "burst" && words >> number)
            burst(number);
        else if (command == "write" && words >> name >> text)
            write(name, text);
        else
            return 1;
        std::cout << "done" << std::endl;
    }
}
