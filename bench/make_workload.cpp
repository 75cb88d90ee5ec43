// Makes and changes the data that the benchmarks run on. The same command makes the same bytes on
// every machine: all of it comes out of one generator with a fixed seed.
//
//   make_workload small DIR FILES FOLDERS    files of 1 to 24 KiB, 9.5 KB on average, text-like
//   make_workload tiny DIR FILES FOLDERS     files of 16 to 271 bytes
//   make_workload large DIR FILES MIB        files of that size that compress 2:1
//   make_workload change DIR PER_MILLE SEED  gives that share of the files new content, same size
//   make_workload patch DIR SEED             1 MiB of new content in the middle of every file
//
// Prints `FILES files, BYTES bytes`, of what it wrote.

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kSeed = 20261121;
constexpr std::size_t kMebibyte = std::size_t{1} << 20U;

// SplitMix64: one addition and a few shifts a number, and the same numbers everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t value = m_state;
        value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
        value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
        return value ^ (value >> 31U);
    }
    // From 0 to `bound` - 1.
    std::uint64_t below(std::uint64_t bound) { return next() % bound; }
    // From 0 up to but not 1.
    double unit() { return static_cast<double>(next() >> 11U) * 0x1.0p-53; }

private:
    std::uint64_t m_state;
};

// Words that come up as unevenly as in a language, mixed with tokens that nothing compresses
// (names, numbers, sums). `tokenEvery` sets the mixture: one token for so many words.
class TextSource {
public:
    explicit TextSource(unsigned tokenEvery) : m_tokenEvery(tokenEvery)
    {
        Random random(kSeed);
        constexpr std::size_t kWords = 1500;
        m_words.reserve(kWords);
        for (std::size_t i = 0; i < kWords; ++i) {
            std::string word(2 + random.below(9), ' ');
            for (char& letter : word)
                letter = static_cast<char>('a' + random.below(26));
            m_words.push_back(word);
        }
    }

    // Appends text to `out` until it has exactly `size` bytes.
    void fill(std::string& out, std::size_t size, Random& random) const
    {
        out.reserve(size + 32);
        while (out.size() < size) {
            const std::uint64_t bits = random.next();
            if (m_tokenEvery != 0 && (bits >> 40U) % m_tokenEvery == 0)
                appendToken(out, random);
            else
                out += wordAt(bits);
            out += (bits >> 60U) == 0 ? '\n' : ' ';
        }
        out.resize(size);
    }

private:
    // The cube of an even number between 0 and 1: the first words are by far the most frequent.
    const std::string& wordAt(std::uint64_t bits) const
    {
        const double even = static_cast<double>(bits & 0xffffffU) * 0x1.0p-24;
        return m_words[static_cast<std::size_t>(even * even * even *
                                                static_cast<double>(m_words.size()))];
    }

    static void appendToken(std::string& out, Random& random)
    {
        static constexpr std::string_view kAlphabet =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
        std::uint64_t bits = random.next();
        for (int i = 0; i < 10; ++i, bits >>= 6U)
            out += kAlphabet[bits & 63U];
    }

    unsigned m_tokenEvery;
    std::vector<std::string> m_words;
};

struct Written {
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
};

void writeFile(const fs::path& path, std::string_view content, Written& written)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    ++written.files;
    written.bytes += content.size();
}

// 1 to 24 KiB, smaller ones more often.
std::size_t smallSize(Random& random)
{
    return 1024 + static_cast<std::size_t>(23.0 * 1024.0 * std::pow(random.unit(), 1.78));
}

// From 16 to 271 bytes.
std::size_t tinySize(Random& random)
{
    return 16 + random.below(256);
}

// Folders of folders, as people have them: 50 on the first level, the others below those.
fs::path folderAt(const fs::path& root, std::uint64_t index)
{
    return root / fmt::format("area {:02}", index % 50) / fmt::format("folder {:05}", index);
}

Written makeMany(const fs::path& root, std::uint64_t files, std::uint64_t folders,
                 std::size_t (*sizeOf)(Random&))
{
    const TextSource text(100);
    Random random(kSeed);
    Written written;
    for (std::uint64_t i = 0; i < folders; ++i)
        fs::create_directories(folderAt(root, i));
    std::string content;
    for (std::uint64_t i = 0; i < files; ++i) {
        content.clear();
        text.fill(content, sizeOf(random), random);
        writeFile(folderAt(root, i % folders) / fmt::format("document {:07}.txt", i), content,
                  written);
    }
    return written;
}

Written makeLarge(const fs::path& root, std::uint64_t files, std::uint64_t mebibytes)
{
    const TextSource text(4);
    Random random(kSeed);
    Written written;
    fs::create_directories(root);
    std::string block;
    for (std::uint64_t i = 0; i < files; ++i) {
        const fs::path path = root / fmt::format("large {:02}.dat", i);
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        for (std::uint64_t part = 0; part < mebibytes; ++part) {
            block.clear();
            text.fill(block, kMebibyte, random);
            file.write(block.data(), static_cast<std::streamsize>(block.size()));
        }
        file.close();
        if (!file)
            throw std::runtime_error("cannot write " + path.string());
        ++written.files;
        written.bytes += mebibytes * kMebibyte;
    }
    return written;
}

// Sorted, since the order of a folder's entries is the file system's own.
std::vector<fs::path> regularFiles(const fs::path& root)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file() && !entry.is_symlink())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Overwrites in place, so that the size stays and only content and time tell the change.
Written change(const fs::path& root, std::uint64_t perMille, std::uint64_t seed)
{
    const TextSource text(100);
    Random random(kSeed + seed);
    Written written;
    std::string content;
    for (const fs::path& path : regularFiles(root)) {
        if (random.below(1000) >= perMille)
            continue;
        content.clear();
        text.fill(content, fs::file_size(path), random);
        writeFile(path, content, written);
    }
    return written;
}

Written patch(const fs::path& root, std::uint64_t seed)
{
    const TextSource text(4);
    Random random(kSeed + seed);
    Written written;
    std::string content;
    for (const fs::path& path : regularFiles(root)) {
        const std::size_t size = std::min<std::size_t>(kMebibyte, fs::file_size(path));
        content.clear();
        text.fill(content, size, random);
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>((fs::file_size(path) - size) / 2));
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        file.close();
        if (!file)
            throw std::runtime_error("cannot write " + path.string());
        ++written.files;
        written.bytes += size;
    }
    return written;
}

std::uint64_t number(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::runtime_error(fmt::format("{} is no number", text));
    return value;
}

Written runCommand(const std::vector<std::string>& words)
{
    const std::string& command = words.at(0);
    const fs::path root = words.at(1);
    if (command == "small")
        return makeMany(root, number(words.at(2)), number(words.at(3)), smallSize);
    if (command == "tiny")
        return makeMany(root, number(words.at(2)), number(words.at(3)), tinySize);
    if (command == "large")
        return makeLarge(root, number(words.at(2)), number(words.at(3)));
    if (command == "change")
        return change(root, number(words.at(2)), number(words.at(3)));
    if (command == "patch")
        return patch(root, number(words.at(2)));
    throw std::runtime_error("unknown command " + command);
}

} // namespace

int main(int count, char** arguments)
{
    try {
        const Written written = runCommand({arguments + 1, arguments + count});
        fmt::print("{} files, {} bytes\n", written.files, written.bytes);
        return 0;
    } catch (const std::out_of_range&) {
        fmt::print(stderr, "make_workload: too few arguments; see the head of its source\n");
        return 2;
    } catch (const std::exception& error) {
        fmt::print(stderr, "make_workload: {}\n", error.what());
        return 1;
    }
}
