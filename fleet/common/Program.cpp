#include "common/Program.h"

#include "common/Topics.h"

#include <Orlek/Localization.h>
#include <Orlek/LogManager.h>
#include <Orlek/LoggerFacade.h>

#include <CLI/CLI.hpp>
#include <boost/log/sources/record_ostream.hpp>

#include <exception>
#include <filesystem>
#include <iostream>
#include <random>
#include <system_error>

namespace Fleet {

int RunProgram(CLI::App& app, int argc, char const* const* argv, std::function<int()> const& work)
{
    try {
        app.get_formatter()->column_width(26);
        app.set_version_flag("--version", LEGACYIF_VERSION);
        app.parse(argc, argv);
        Orlek::LogManager::Instance().AddConsoleSink();
        int const status = work();
        if (!std::cout.flush()) {
            std::cerr << app.get_name() << ": the output cannot be written\n";
            return k_failure;
        }
        return status;
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? k_success : k_usage;
    } catch (UsageError const& error) {
        std::cerr << app.get_name() << ": " << error.what() << "\nTry " << app.get_name() << " --help.\n";
        return k_usage;
    } catch (std::exception const& error) {
        std::cerr << app.get_name() << ": " << Printable(error.what()) << '\n';
        return k_failure;
    }
}

std::string const& RequireName(std::string const& option, std::string const& name)
{
    if (!IsName(name))
        throw UsageError(option + ": not a name of 1 to 64 letters, digits, '-', '_' and '.': " + Printable(name));
    return name;
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

std::uint64_t RandomNumber()
{
    static std::random_device device;
    return (std::uint64_t{device()} << 32) | device();
}

} // namespace Fleet
