#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace HostNetwork {

/// The only part of the program that asks the operating system about its network.
///
/// Every read is bounded and may fail: whatever the machine does not offer is simply not there. Texts come back on one
/// or more lines without blanks at their ends, and with no control characters but tabs and line ends.
class HostReader
{
public:
    enum class Family_t
    {
        IPv4,
        IPv6,
    };

    /// Longer files are not read.
    static constexpr std::size_t k_maxFileSize = 64 * 1024;

    /// @param root where /sys, /proc and /etc are found. With any other than "/" the system's own calls are not made,
    ///        since they would speak of another machine than the files do.
    explicit HostReader(std::filesystem::path root);

    /// The contents of a small regular file.
    std::optional<std::string> File(std::string const& path) const;

    /// The names of all interfaces, in alphabetic order.
    std::vector<std::string> Interfaces() const;

    /// The addresses of an interface, each with the length of its network prefix: "192.168.1.5 24".
    std::vector<std::string> Addresses(std::string const& interface, Family_t family) const;

    /// The IPv4 routers that an interface sends everything to that it has no better way for.
    std::vector<std::string> Gateways(std::string const& interface) const;

    /// What the system's calls say of an interface, for machines that have no /sys.
    /// @{
    std::optional<std::string> Mtu(std::string const& interface) const;
    std::optional<std::string> Flags(std::string const& interface) const;
    /// @}

    /// The words behind a keyword of /etc/resolv.conf, in the order of the file.
    std::vector<std::string> ResolverWords(std::string const& keyword) const;

private:
    struct Address_t
    {
        std::string interface;
        Family_t family;
        std::string text;
    };

    struct Link_t
    {
        std::string name;
        unsigned int flags;
    };

    void AskSystem_();

    std::filesystem::path m_root;
    bool m_live; ///< whether the files are those of the running system
    std::vector<Address_t> m_addresses;
    std::vector<Link_t> m_links;
};

/// The words of a text that white space separates.
std::vector<std::string> Words(std::string const& text);

} // namespace HostNetwork
