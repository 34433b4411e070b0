#include <Legacy/IfKit/AtomicFile.h>
#include <Legacy/IfKit/ValueText.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Legacy::IfKit {

namespace {

constexpr std::size_t k_pending = std::size_t{64} * 1024;

/// Where a path leads if it is a symbolic link; the path itself otherwise, also if nothing is there.
std::string TargetOf(std::string const& path)
{
    std::error_code error;
    auto const target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

} // namespace

std::string FileError_t::ToText() const { return Printable(path + ": byte " + std::to_string(offset) + ": " + reason); }

AtomicFile::AtomicFile(std::string path) : m_path(std::move(path)), m_target(TargetOf(m_path)) {}

AtomicFile::~AtomicFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
}

void AtomicFile::Write(std::span<unsigned char const> bytes)
{
    m_pending.insert(m_pending.end(), bytes.begin(), bytes.end());
    m_size += bytes.size();
    if (m_pending.size() >= k_pending)
        Flush_();
}

void AtomicFile::Write(std::string_view text)
{
    Write(std::span(reinterpret_cast<unsigned char const*>(text.data()), text.size()));
}

void AtomicFile::Rewrite(std::uint64_t offset, std::span<unsigned char const> bytes)
{
    Flush_();
    Put_(bytes, offset);
}

std::optional<FileError_t> AtomicFile::Commit()
{
    Flush_();
    if (!m_error && ::fsync(m_descriptor) != 0)
        Fail_(m_size, "cannot be brought to the disk", errno);
    if (!m_error && ::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        Fail_(0, "cannot be replaced", errno);
    if (!m_error) {
        m_temporary.clear();
        SyncFolder_();
    }
    return m_error;
}

void AtomicFile::Open_()
{
    struct stat former = {};
    bool const exists = ::stat(m_target.c_str(), &former) == 0;
    if (exists && !S_ISREG(former.st_mode))
        return Fail_(0, "expected a file, and nothing else, to be there", 0);
    // Made with the usual rights, and under a name that no other object of this or of another process has.
    static std::atomic<unsigned int> number = 0;
    do {
        m_temporary = m_target + '.' + std::to_string(::getpid()) + '-' + std::to_string(number++) + ".tmp";
        m_descriptor = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_descriptor < 0 && errno == EEXIST);
    if (m_descriptor < 0) {
        int const error = errno;
        m_temporary.clear();
        return Fail_(0, "cannot be written", error);
    }
    if (exists)
        static_cast<void>(::fchmod(m_descriptor, former.st_mode & 07777)); // as far as the file system knows rights
}

void AtomicFile::Flush_()
{
    if (m_descriptor < 0 && !m_error)
        Open_();
    Put_(m_pending, m_size - m_pending.size());
    m_pending.clear();
}

void AtomicFile::Put_(std::span<unsigned char const> bytes, std::uint64_t offset)
{
    while (!bytes.empty() && !m_error) {
        ssize_t const written = ::pwrite(m_descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
            offset += static_cast<std::uint64_t>(written);
        } else if (errno != EINTR) {
            Fail_(offset, "cannot be written", errno);
        }
    }
}

void AtomicFile::Fail_(std::uint64_t offset, std::string const& what, int error)
{
    m_error = FileError_t{m_path, offset, error == 0 ? what : what + ": " + std::generic_category().message(error)};
}

/// The new name is not on the disk before the folder is.
void AtomicFile::SyncFolder_()
{
    std::string folder = std::filesystem::path(m_target).parent_path().string();
    if (folder.empty())
        folder = ".";
    int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // a folder that may be written and not read: the system brings it to the disk in its own time
    if (::fsync(descriptor) != 0 && errno != EINVAL)
        Fail_(m_size, "cannot be brought to the disk", errno);
    ::close(descriptor);
}

} // namespace Legacy::IfKit
