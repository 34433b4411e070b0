#include "common/Broker.h"

#include "common/Program.h"

#include <Net/AddrStr.h>
#include <Net/Endpoint.h>

#include <CLI/CLI.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string_view>

namespace Fleet {

namespace {

constexpr char k_environmentUser[] = "LEGACYIF_FLEET_USER";
constexpr char k_environmentPassword[] = "LEGACYIF_FLEET_PASSWORD";
constexpr std::size_t k_maxLine = 4096;

std::string FromEnvironment(char const* name)
{
    char const* const value = std::getenv(name);
    return value ? value : "";
}

void RequireReadable(char const* option, std::string const& path)
{
    if (!path.empty() && access(path.c_str(), R_OK) != 0)
        throw UsageError(std::string(option) + ": the file cannot be read: " + Printable(path));
}

/// Two lines, `user = …` and `password = …`; what stands behind the first blank of the value belongs to it.
void ReadCredentials(std::string const& path, Broker_t& broker)
{
    std::ifstream file(path);
    struct stat status = {};
    if (!file || stat(path.c_str(), &status) != 0)
        throw UsageError("--credentials: the file cannot be read: " + Printable(path));
    if (S_ISREG(status.st_mode) && (status.st_mode & (S_IRWXO | S_IWGRP)) != 0)
        throw UsageError("--credentials: the file is open to others, who could read or change it: " + Printable(path));
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line.front() == '#')
            continue;
        auto const equals = line.find('=');
        auto const name = line.substr(0, line.find_first_of(" \t="));
        auto const start = equals == std::string::npos ? equals : line.find_first_not_of(" \t", equals + 1);
        auto const value = start == std::string::npos ? std::string() : line.substr(start);
        if (equals == std::string::npos || line.size() > k_maxLine || (name != "user" && name != "password"))
            throw UsageError("--credentials: line " + std::to_string(number) +
                             " is neither \"user = …\" nor \"password = …\": " + Printable(path));
        (name == "user" ? broker.user : broker.password) = value;
    }
}

} // namespace

void BrokerOptions::AddTo(CLI::App& app)
{
    auto const group = "The broker";
    app.add_option("--broker", m_endpoint, "Where it listens")
        ->type_name("HOST:PORT")
        ->capture_default_str()
        ->group(group);
    app.add_option("--credentials", m_credentials,
                   "File with the lines \"user = …\" and \"password = …\"; without it, " +
                       std::string(k_environmentUser) + " and " + k_environmentPassword + " of the environment")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--ca", m_broker.ca, "Speak TLS, with a broker that a certificate in this file vouches for")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--cert", m_broker.certificate, "Certificate to show to the broker")
        ->type_name("FILE")
        ->group(group);
    app.add_option("--key", m_broker.key, "Key of the certificate")->type_name("FILE")->group(group);
}

Broker_t BrokerOptions::Read() const
{
    Broker_t broker = m_broker;
    auto const endpoint = Net::Endpoint<Net::AddrStr>::FromString(m_endpoint);
    if (!endpoint.IsFullySpecified())
        throw UsageError("--broker: not a host and a port: " + Printable(m_endpoint));
    broker.host = endpoint.GetAddr().ToString();
    broker.port = endpoint.GetPort();
    if (m_credentials.empty()) {
        broker.user = FromEnvironment(k_environmentUser);
        broker.password = FromEnvironment(k_environmentPassword);
    } else {
        ReadCredentials(m_credentials, broker);
    }
    if (broker.user.empty() && !broker.password.empty())
        throw UsageError("there is a password for the broker and no user");
    if (broker.certificate.empty() != broker.key.empty())
        throw UsageError("--cert and --key go together");
    if (broker.ca.empty() && !broker.certificate.empty())
        throw UsageError("--cert: TLS needs --ca as well");
    RequireReadable("--ca", broker.ca);
    RequireReadable("--cert", broker.certificate);
    RequireReadable("--key", broker.key);
    return broker;
}

} // namespace Fleet
