#include "web/Serve.h"

#include "common/Program.h"
#include "web/HttpServer.h"
#include "web/Site.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <iostream>
#include <memory>

namespace Fleet {

namespace {

std::unique_ptr<HttpServer> Open(boost::asio::io_context& context, unsigned short port, Site& site)
{
    try {
        return std::make_unique<HttpServer>(
            context, port, HttpServer::Limits_t{},
            [&site](std::shared_ptr<HttpExchange> const& exchange) { site.Handle(exchange); });
    } catch (boost::system::system_error const& error) {
        throw std::runtime_error("port " + std::to_string(port) + " cannot be opened: " + error.code().message());
    }
}

} // namespace

int Serve(FleetOptions_t const& options)
{
    UseCatalogues();
    boost::asio::io_context context{1};
    boost::asio::signal_set signals(context, SIGINT, SIGTERM);
    Controller controller(context, SettingsOf(options));
    Site site(controller);
    auto server = Open(context, options.port, site);
    int status = k_success;
    auto const end = [&](int why) {
        if (!server)
            return;
        status = why;
        server.reset();
        controller.Stop([&] { context.stop(); });
    };
    signals.async_wait([&](boost::system::error_code const&, int) { end(k_success); });
    controller.Signals().link.connect([&](bool isConnected, std::string const& reason) {
        auto const broker = controller.Settings().broker.ToText();
        std::cout << (isConnected ? "connected to " + broker : "no broker at " + broker + ": " + Printable(reason))
                  << std::endl;
        if (!isConnected && controller.IsRefused())
            end(k_noBroker);
    });
    std::cout << "http://127.0.0.1:" << server->Port() << '/' << std::endl;
    controller.Start();
    context.run();
    return status;
}

} // namespace Fleet
