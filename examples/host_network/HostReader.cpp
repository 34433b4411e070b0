#include "HostReader.h"

#include <net/if.h>
#include <netinet/in.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <memory>
#include <sstream>
#include <utility>

namespace HostNetwork {

namespace {

/// Closes a file descriptor at the end of its scope.
class Descriptor
{
public:
    explicit Descriptor(int fd) noexcept : m_fd(fd) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

    int Get() const noexcept { return m_fd; }
    bool IsOpen() const noexcept { return m_fd >= 0; }

private:
    int m_fd;
};

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Cuts blanks at both ends and takes the power to confuse a terminal from what stays.
std::string Cleaned(std::string text)
{
    auto const isWord = [](char c) { return !IsBlank(c) && c != '\0'; };
    text.erase(std::find_if(text.rbegin(), text.rend(), isWord).base(), text.end());
    text.erase(text.begin(), std::find_if(text.begin(), text.end(), isWord));
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') || c == 0x7f; }, '?');
    return text;
}

/// The text of an address and the number of bits that its mask has set.
template<typename Address>
std::optional<std::string> AddressText(int family, Address const& address, Address const* mask)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (!::inet_ntop(family, &address, text.data(), text.size()))
        return {};
    auto const* const bytes = reinterpret_cast<unsigned char const*>(mask);
    int bits = 0;
    for (std::size_t i = 0; mask && i < sizeof(Address); ++i)
        bits += std::popcount(bytes[i]);
    return std::string(text.data()) + ' ' + std::to_string(bits);
}

} // namespace

std::vector<std::string> Words(std::string const& text)
{
    std::vector<std::string> words;
    std::istringstream in(text);
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

HostReader::HostReader(std::filesystem::path root) : m_root(std::move(root)), m_live(m_root == "/")
{
    if (m_live)
        AskSystem_();
}

std::optional<std::string> HostReader::File(std::string const& path) const
{
    // Not blocking, so that a pipe in the place of a file holds nobody up.
    Descriptor const file(::open((m_root / path.substr(1)).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    std::string text(k_maxFileSize + 1, '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        ssize_t const count = ::read(file.Get(), text.data() + size, text.size() - size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0)
            break;
        size += static_cast<std::size_t>(count);
    }
    if (size > k_maxFileSize)
        return {};
    text.resize(size);
    return Cleaned(std::move(text));
}

std::vector<std::string> HostReader::Interfaces() const
{
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(m_root / "sys/class/net", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored))
            names.push_back(Cleaned(entry->path().filename().string()));
    }
    if (names.empty()) {
        for (auto const& link : m_links)
            names.push_back(link.name);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<std::string> HostReader::Addresses(std::string const& interface, Family_t family) const
{
    std::vector<std::string> texts;
    for (auto const& address : m_addresses) {
        if (address.interface == interface && address.family == family)
            texts.push_back(address.text);
    }
    return texts;
}

std::vector<std::string> HostReader::Gateways(std::string const& interface) const
{
    // Columns: interface, destination, gateway and more; addresses as one number in the order of the machine's bytes.
    std::vector<std::string> gateways;
    std::istringstream lines(File("/proc/net/route").value_or(""));
    for (std::string line; std::getline(lines, line);) {
        auto const columns = Words(line);
        if (columns.size() < 3 || columns[0] != interface || columns[1] != "00000000" || columns[2] == "00000000")
            continue;
        in_addr address = {};
        char const* const end = columns[2].data() + columns[2].size();
        auto const [stop, error] = std::from_chars(columns[2].data(), end, address.s_addr, 16);
        std::array<char, INET_ADDRSTRLEN> text{};
        if (error == std::errc() && stop == end && ::inet_ntop(AF_INET, &address, text.data(), text.size()))
            gateways.emplace_back(text.data());
    }
    return gateways;
}

std::optional<std::string> HostReader::Mtu(std::string const& interface) const
{
    ifreq request = {};
    if (!m_live || interface.size() >= sizeof(request.ifr_name))
        return {};
    interface.copy(request.ifr_name, sizeof(request.ifr_name) - 1);
    Descriptor const socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.IsOpen() || ::ioctl(socket.Get(), SIOCGIFMTU, &request) != 0)
        return {};
    return std::to_string(request.ifr_mtu);
}

std::optional<std::string> HostReader::Flags(std::string const& interface) const
{
    auto const link = std::find_if(m_links.begin(), m_links.end(), [&](auto const& l) { return l.name == interface; });
    if (link == m_links.end())
        return {};
    return std::to_string(link->flags);
}

std::vector<std::string> HostReader::ResolverWords(std::string const& keyword) const
{
    std::vector<std::string> words;
    std::istringstream lines(File("/etc/resolv.conf").value_or(""));
    for (std::string line; std::getline(lines, line);) {
        auto const found = Words(line);
        if (!found.empty() && found.front() == keyword)
            words.insert(words.end(), found.begin() + 1, found.end());
    }
    return words;
}

void HostReader::AskSystem_()
{
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return;
    std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> const owner(list, &::freeifaddrs);
    for (ifaddrs const* entry = list; entry; entry = entry->ifa_next) {
        // An address may carry a label, such as eth0:1, in the place of the interface's name.
        std::string const label = entry->ifa_name;
        std::string const name = label.substr(0, label.find(':'));
        m_links.push_back({name, entry->ifa_flags});
        if (!entry->ifa_addr)
            continue;
        std::optional<std::string> text;
        auto family = Family_t::IPv4;
        if (entry->ifa_addr->sa_family == AF_INET) {
            auto const* const mask = reinterpret_cast<sockaddr_in const*>(entry->ifa_netmask);
            text = AddressText(AF_INET, reinterpret_cast<sockaddr_in const*>(entry->ifa_addr)->sin_addr,
                               mask ? &mask->sin_addr : nullptr);
        } else if (entry->ifa_addr->sa_family == AF_INET6) {
            family = Family_t::IPv6;
            auto const* const mask = reinterpret_cast<sockaddr_in6 const*>(entry->ifa_netmask);
            text = AddressText(AF_INET6, reinterpret_cast<sockaddr_in6 const*>(entry->ifa_addr)->sin6_addr,
                               mask ? &mask->sin6_addr : nullptr);
        }
        if (text)
            m_addresses.push_back({name, family, *text});
    }
}

} // namespace HostNetwork
