#include "XeSystem.h"

#include "XeSafeCRT.h"

#include <boost/date_time/posix_time/ptime.hpp>

#include <execinfo.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace {

XeProfile::TimeStamp tsStart_; // not a date-time until begun
XeProfile::Duration td_;       // 0 until ended
std::list<XeProfile::tProfileSession> mlistProfiles;
XeProfile::Reporter reporter_ = nullptr;

XeProfile::TimeStamp _now() { return boost::posix_time::microsec_clock::local_time(); }

XeProfile::Duration _since(const std::shared_ptr<void>& token)
{
    return _now() - *static_cast<const XeProfile::TimeStamp*>(token.get());
}

void _report(const _XeString<wchar_t>& line)
{
    if (reporter_ != nullptr) {
        reporter_(line.c_str());
    }
}

// The system writes frame number, image and address in columns before the symbol; a line that is
// shorter than those columns has its symbol elsewhere and is told whole.
_XeString<wchar_t> _symbolOf(std::string_view line)
{
    constexpr std::size_t kColumns = 59;

    line.remove_prefix(line.size() > kColumns ? kColumns : 0);
    _XeString<wchar_t> symbol;
    xeassign(symbol, std::string(line).c_str());
    return symbol;
}

} // namespace

XeProfile::TimeStamp XeProfile::begin() { return tsStart_ = _now(); }

XeProfile::Duration XeProfile::end() { return td_ = _now() - tsStart_; }

long XeProfile::getMSEC() { return getuSEC() / 1000; }

long XeProfile::getuSEC() { return static_cast<long>(td_.total_microseconds()); }

std::shared_ptr<void> XeProfile::start() { return std::make_shared<TimeStamp>(_now()); }

long XeProfile::elapsed_milliseconds(const std::shared_ptr<void>& token)
{
    return elapsed_microseconds(token) / 1000;
}

long XeProfile::elapsed_microseconds(const std::shared_ptr<void>& token)
{
    return static_cast<long>(_since(token).total_microseconds());
}

int XeProfile::SessionBegin(_XeString<wchar_t> name, _XeString<wchar_t> detail)
{
    tProfileSession session;
    session.name = std::move(name);
    session.detail = std::move(detail);
    session.start = _now();
    mlistProfiles.push_back(std::move(session));
    return static_cast<int>(mlistProfiles.size()) - 1;
}

void XeProfile::SessionEnd(int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= mlistProfiles.size()) {
        return;
    }
    tProfileSession& session = *std::next(mlistProfiles.begin(), index);
    session.ended = true;
    session.duration = _now() - session.start;
}

const std::list<XeProfile::tProfileSession>& XeProfile::sessions() { return mlistProfiles; }

void XeProfile::DumpResultsSessions()
{
    for (const tProfileSession& session : mlistProfiles) {
        _XeString<wchar_t> line;
        line.format(L"%ls\t%ls\t%lld us", session.name.c_str(), session.detail.c_str(),
                    session.ended ? static_cast<long long>(session.duration.total_microseconds())
                                  : -1LL);
        _report(line);
    }
}

void XeProfile::traceCallStack(const wchar_t* label, int depth)
{
    std::array<void*, 128> addresses{};
    const int captured = backtrace(addresses.data(), static_cast<int>(addresses.size()));
    const std::unique_ptr<char*[], void (*)(void*)> symbols(
        backtrace_symbols(addresses.data(), captured), std::free);
    if (symbols == nullptr) {
        return;
    }
    for (int frame = 1; frame < std::min(captured, depth); ++frame) {
        _XeString<wchar_t> line;
        line.format(L"%ls\t%ls", label != nullptr ? label : L"",
                    _symbolOf(symbols[static_cast<std::size_t>(frame)]).c_str());
        _report(line);
    }
}

void XeProfile::setReporter(Reporter reporter) { reporter_ = reporter; }
