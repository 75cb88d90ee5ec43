#pragma once

#include <unistd.h>

#include <utility>

namespace vardelin::platform {

// Owns a file descriptor; -1 is none. The destructor closes without a word.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) noexcept : m_fd(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : m_fd(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_fd = other.release();
        }
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { reset(); }

    int get() const noexcept { return m_fd; }
    explicit operator bool() const noexcept { return m_fd >= 0; }
    int release() noexcept { return std::exchange(m_fd, -1); }

    void reset() noexcept
    {
        if (m_fd >= 0)
            ::close(release());
    }

private:
    int m_fd = -1;
};

} // namespace vardelin::platform
