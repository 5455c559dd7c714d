#include "tools/practice/practice_server.h"

#include "tools/practice/host.h"
#include "tools/practice/pages.h"

#include <algorithm>

namespace kestrune::practice {
namespace {

constexpr std::size_t addresses = 254;
constexpr int attempts_at_a_free_port = 50;

std::string address_of(std::size_t index) { return "127.0.1." + std::to_string(index + 1); }

} // namespace

PracticeServer::PracticeServer(std::vector<Site> sites, int port) : sites_(std::move(sites)) {
    if (sites_.size() > addresses)
        throw PracticeServerError("there are more than " + std::to_string(addresses) + " sites");
    shared_ = std::make_unique<Shared>(
        log_, [this](std::string_view name, std::string_view text) { return filled_in(name, text); });
    if (port != 0) {
        if (!bind_all(port))
            throw PracticeServerError("port " + std::to_string(port) + " is taken at " +
                                      hosts_.back()->address());
    } else {
        // The port is free at the first address; only another program can have it at a further one.
        for (int attempt = 1; !bind_all(free_port()); ++attempt) {
            if (attempt == attempts_at_a_free_port)
                throw PracticeServerError("no port is free at every address");
        }
    }
    for (const auto& host : hosts_)
        host->start();
}

PracticeServer::~PracticeServer() { stop(); }

int PracticeServer::free_port() { return Socket(address_of(0), 0).port(); }

bool PracticeServer::bind_all(int port) {
    hosts_.clear();
    port_ = port;
    for (std::size_t i = 0; i < sites_.size(); ++i) {
        hosts_.push_back(std::make_unique<Host>(sites_.at(i), address_of(i), *shared_));
        if (!hosts_.back()->bind(port))
            return false;
    }
    return true;
}

void PracticeServer::stop() {
    shared_->gate.stop();
    for (const auto& host : hosts_)
        host->begin_stop();
    hosts_.clear();
}

std::size_t PracticeServer::index(std::string_view name) const {
    const auto found = std::ranges::find(sites_, name, &Site::name);
    if (found == sites_.end())
        throw std::out_of_range("there is no practice site " + std::string(name));
    return static_cast<std::size_t>(found - sites_.begin());
}

const Site& PracticeServer::site(std::string_view name) const { return sites_.at(index(name)); }

std::string PracticeServer::origin(std::string_view name) const {
    return "http://" + address_of(index(name)) + ":" + std::to_string(port_);
}

std::string PracticeServer::address(std::string_view name, std::string_view path_or_address) const {
    if (path_or_address.starts_with('/'))
        return origin(name) + std::string(path_or_address);
    return filled_in(name, path_or_address);
}

std::string PracticeServer::filled_in(std::string_view name, std::string_view text) const {
    return fill_in(text, [&](std::string_view other) { return origin(other.empty() ? name : other); });
}

void PracticeServer::release(std::string_view name, std::string_view path) {
    shared_->gate.release(site(name).name, path);
}

} // namespace kestrune::practice
