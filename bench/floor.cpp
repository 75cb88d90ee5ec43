// The least that copying a tree compressed can cost: one `zstd -3` file for each source file, two
// at a time, nothing remembered and nothing flushed. What the product takes is measured against it.
//
//   floor compress SOURCE TARGET     TARGET/<path>.zst for each regular file below SOURCE
//   floor decompress SOURCE TARGET   and back

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kLevel = 3;
constexpr unsigned kWorkers = 2;
constexpr std::size_t kBlockBytes = std::size_t{1} << 20U;

class File {
public:
    File(const fs::path& path, int flags)
        : m_path(path), m_handle(::open(path.c_str(), flags, 0644))
    {
        if (m_handle < 0)
            fail();
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { ::close(m_handle); }

    std::uint64_t size() const
    {
        struct stat facts {};
        if (::fstat(m_handle, &facts) != 0)
            fail();
        return static_cast<std::uint64_t>(facts.st_size);
    }
    // As many bytes as there are, `size` at most; 0 at the end.
    std::size_t read(char* data, std::size_t size)
    {
        const ssize_t count = ::read(m_handle, data, size);
        if (count < 0)
            fail();
        return static_cast<std::size_t>(count);
    }
    void write(const char* data, std::size_t size)
    {
        while (size > 0) {
            const ssize_t count = ::write(m_handle, data, size);
            if (count < 0)
                fail();
            data += count;
            size -= static_cast<std::size_t>(count);
        }
    }

private:
    [[noreturn]] void fail() const
    {
        throw std::system_error(errno, std::generic_category(), m_path.string());
    }

    const fs::path& m_path;
    int m_handle;
};

std::size_t checked(std::size_t result)
{
    if (ZSTD_isError(result) != 0)
        throw std::runtime_error(ZSTD_getErrorName(result));
    return result;
}

struct FreeContext {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

// One a thread: contexts and buffers serve every file.
class Worker {
public:
    Worker() : m_in(kBlockBytes, '\0'), m_out(ZSTD_compressBound(kBlockBytes), '\0')
    {
        checked(ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_compressionLevel, kLevel));
        checked(ZSTD_CCtx_setParameter(m_compressor.get(), ZSTD_c_checksumFlag, 1));
    }

    void compress(const fs::path& source, const fs::path& target)
    {
        File from(source, O_RDONLY | O_CLOEXEC);
        File to(target, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
        checked(ZSTD_CCtx_reset(m_compressor.get(), ZSTD_reset_session_only));
        checked(ZSTD_CCtx_setPledgedSrcSize(m_compressor.get(), from.size()));
        std::uint64_t left = from.size();
        bool done = false;
        while (!done) {
            const std::size_t size = from.read(m_in.data(), m_in.size());
            left -= size;
            const ZSTD_EndDirective directive = left == 0 ? ZSTD_e_end : ZSTD_e_continue;
            ZSTD_inBuffer in{m_in.data(), size, 0};
            std::size_t pending = 0;
            do {
                ZSTD_outBuffer out{m_out.data(), m_out.size(), 0};
                pending = checked(ZSTD_compressStream2(m_compressor.get(), &out, &in, directive));
                to.write(m_out.data(), out.pos);
            } while (in.pos < in.size || (directive == ZSTD_e_end && pending != 0));
            done = directive == ZSTD_e_end;
        }
    }

    void decompress(const fs::path& source, const fs::path& target)
    {
        File from(source, O_RDONLY | O_CLOEXEC);
        File to(target, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
        checked(ZSTD_DCtx_reset(m_decompressor.get(), ZSTD_reset_session_only));
        for (;;) {
            ZSTD_inBuffer in{m_in.data(), from.read(m_in.data(), m_in.size()), 0};
            if (in.size == 0)
                return;
            bool full = false;
            while (in.pos < in.size || full) {
                ZSTD_outBuffer out{m_out.data(), m_out.size(), 0};
                checked(ZSTD_decompressStream(m_decompressor.get(), &out, &in));
                to.write(m_out.data(), out.pos);
                full = out.pos == out.size;
            }
        }
    }

private:
    std::unique_ptr<ZSTD_CCtx, FreeContext> m_compressor{ZSTD_createCCtx()};
    std::unique_ptr<ZSTD_DCtx, FreeContext> m_decompressor{ZSTD_createDCtx()};
    std::string m_in;
    std::string m_out;
};

// Paths relative to `source`; makes the folders below `target` on the way.
std::vector<fs::path> listAndMakeFolders(const fs::path& source, const fs::path& target)
{
    std::vector<fs::path> files;
    fs::create_directories(target);
    const std::size_t prefix = (source / "").native().size();
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(source)) {
        fs::path relative = entry.path().native().substr(prefix);
        if (entry.is_symlink())
            continue;
        if (entry.is_directory())
            fs::create_directory(target / relative);
        else if (entry.is_regular_file())
            files.push_back(std::move(relative));
    }
    return files;
}

void run(bool compress, const fs::path& source, const fs::path& target)
{
    const std::vector<fs::path> files = listAndMakeFolders(source, target);
    std::atomic<std::size_t> next{0};
    std::mutex failureMutex;
    std::exception_ptr failure; // guarded by failureMutex
    const auto work = [&] {
        try {
            Worker worker;
            for (std::size_t i = next++; i < files.size(); i = next++) {
                fs::path to = target / files[i];
                if (compress)
                    worker.compress(source / files[i], to += ".zst");
                else
                    worker.decompress(source / files[i], to.replace_extension());
            }
        } catch (...) {
            const std::lock_guard lock(failureMutex);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kWorkers; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace

int main(int count, char** arguments)
{
    const std::vector<std::string_view> words(arguments + 1, arguments + count);
    if (words.size() != 3 || (words[0] != "compress" && words[0] != "decompress")) {
        fmt::print(stderr, "usage: floor compress|decompress SOURCE TARGET\n");
        return 2;
    }
    try {
        run(words[0] == "compress", words[1], words[2]);
        return 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "floor: {}\n", error.what());
        return 1;
    }
}
