#include "common/Program.h"

#include "common/Topics.h"

#include <Orlek/Localization.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <boost/log/sources/record_ostream.hpp>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <iostream>
#include <system_error>

namespace Fleet {

Options::Options(std::span<char const* const> arguments, std::initializer_list<std::string_view> known)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string_view const word = arguments[i];
        if (word == "--help") {
            m_help = true;
            continue;
        }
        auto const equals = word.find('=');
        auto const name = word.substr(0, equals);
        if (std::find(known.begin(), known.end(), name) == known.end())
            throw UsageError("unknown option: " + Printable(word));
        if (equals == std::string_view::npos && i + 1 == arguments.size())
            throw UsageError(std::string(name) + ": the value is missing");
        m_values.emplace(name, equals == std::string_view::npos ? arguments[++i] : word.substr(equals + 1));
    }
}

std::optional<std::string> Options::Value(std::string const& name) const
{
    auto const range = m_values.equal_range(name);
    return range.first == range.second ? std::nullopt : std::optional(std::prev(range.second)->second);
}

std::vector<std::string> Options::Values(std::string const& name) const
{
    std::vector<std::string> values;
    for (auto [it, end] = m_values.equal_range(name); it != end; ++it)
        values.push_back(it->second);
    return values;
}

int RunProgram(int argc, char const* const* argv, std::string_view help, std::initializer_list<std::string_view> known,
               std::function<void(Options const&)> const& work)
{
    std::span const words(argv, static_cast<std::size_t>(argc));
    std::string const name = argc > 0 ? std::string(words[0]).substr(std::string(words[0]).rfind('/') + 1) : "";
    try {
        Options const options(words.subspan(std::min<std::size_t>(1, words.size())), known);
        if (options.WantsHelp()) {
            std::cout << help;
            return 0;
        }
        Orlek::LogManager::Instance().AddConsoleSink();
        work(options);
        return 0;
    } catch (UsageError const& error) {
        std::cerr << name << ": " << error.what() << "\nTry " << name << " --help.\n";
        return 2;
    } catch (std::exception const& error) {
        std::cerr << name << ": " << error.what() << '\n';
        return 1;
    }
}

Net::Endpoint<Net::AddrStr> BrokerOf(Options const& options)
{
    auto const text = options.Value("--broker").value_or("127.0.0.1:1883");
    auto const broker = Net::Endpoint<Net::AddrStr>::FromString(text);
    if (!broker.IsFullySpecified())
        throw UsageError("--broker: not a host and a port: " + Printable(text));
    return broker;
}

std::string const& RequireName(std::string const& option, std::string const& name)
{
    if (!IsName(name))
        throw UsageError(option + ": not a name: " + Printable(name));
    return name;
}

StopSignal::StopSignal()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    // Blocked before any other thread starts, the signals are left to the descriptor in all of them.
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC);
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd");
}

StopSignal::~StopSignal() { close(m_descriptor); }

std::vector<bool> WaitReadable(std::initializer_list<int> descriptors, std::chrono::milliseconds time)
{
    std::vector<pollfd> polled;
    for (int const descriptor : descriptors)
        polled.push_back({descriptor, POLLIN, 0});
    if (poll(polled.data(), polled.size(), static_cast<int>(std::max<std::int64_t>(0, time.count()))) < 0 &&
        errno != EINTR)
        throw std::system_error(errno, std::generic_category(), "poll");
    std::vector<bool> readable;
    for (auto const& entry : polled)
        readable.push_back(entry.revents != 0);
    return readable;
}

void Log(Orlek::LogLevel_t level, std::string const& text)
{
    static auto const logger = Orlek::LogManager::Instance().GetLogger("Legacy.Fleet");
    if (logger->IsEnabled(level))
        BOOST_LOG_SEV(*logger->get(), level) << text;
}

void UseCatalogues()
{
    std::error_code error;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error)
        Orlek::Localization::SetCatalogueDirectory(program.parent_path().parent_path() / "share/legacyif-fleet/locale");
}

std::uint64_t NextNumber()
{
    static std::uint64_t last = 0;
    auto const now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch());
    last = std::max(last + 1, static_cast<std::uint64_t>(now.count()));
    return last;
}

} // namespace Fleet
