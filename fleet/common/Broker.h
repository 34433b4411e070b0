#pragma once

#include <chrono>
#include <string>

namespace CLI {
class App;
}

namespace Fleet {

/// Where the broker is, and how one gets in.
struct Broker_t
{
    std::string host = "127.0.0.1";
    unsigned short port = 1883;
    std::string user;
    std::string password;
    std::string ca; ///< file with the certificates of those who vouch for the broker; TLS is spoken if there is one
    std::string certificate; ///< file with the client's own, or empty
    std::string key;         ///< file with the key to it
    std::chrono::seconds keepalive{15};

    std::string ToText() const { return host + ':' + std::to_string(port); }
};

/// The options of a command line about the broker. User and password are not among them, since command lines are for
/// everybody to see: they come from a file or from the environment.
class BrokerOptions
{
public:
    /// The object must outlive the parsing.
    void AddTo(CLI::App& app);

    /// @throws UsageError for an endpoint that is none, options that do not fit together, and files that cannot be
    /// read.
    Broker_t Read() const;

private:
    std::string m_endpoint = "127.0.0.1:1883";
    std::string m_credentials;
    Broker_t m_broker;
};

} // namespace Fleet
