#include "tests/wire_faults/expectation.h"

#include <algorithm>
#include <optional>

#include "include/qtr_orvex.h"

namespace orvex_test {

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kLongestReply = 1024;

const std::string kNothingRead = "Error: SerialLink::recvArray: read returned with EOF (0)";
const std::string kReadFailed =
    "Error: SerialLink::recvArray: Error 5 from read: Input/output error";
const std::string kPurgeFailed = "Error: SerialLink::purge: Error 5 from ioctl: Input/output error";
const std::string kRestoreFailed =
    " set tty attributes. Error 5 from tcsetattr: Input/output error";

struct Failure {
    std::uint32_t status;
    std::string text;
};

std::string exceptionText(const char* code, const std::string& text) {
    return std::string("DriverException (0x") + code + "): " + text;
}

/// As the log's receiver sees it: a text that ends at its first zero byte.
std::string asLine(std::string text) {
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

/// The reply as the library takes it.
std::string taken(const std::string& sent) {
    const std::size_t end = sent.find('\r');
    return sent.substr(0, std::min(end == std::string::npos ? end : end + 1, kLongestReply));
}

std::string receivedLine(std::string reply) {
    if (reply.back() == '\r') {
        reply.back() = '*';
    }
    return asLine(" <-Received [" + reply + "]");
}

/// Checks the lines of one call from the first to the last.
class Check {
  public:
    explicit Check(const Outcome& outcome) : outcome_(outcome) {}

    void complain(const std::string& text) { complaints_.push_back(text); }
    void expectLine(const std::string& line) {
        skipReadsWithoutBytes();
        if (next_ < outcome_.lines.size() && outcome_.lines[next_] == line) {
            ++next_;
            return;
        }
        complain("expected the line <" + line + ">, got <" + nextLine() + ">");
    }
    void expectStatus(std::uint32_t status) {
        if (outcome_.status != status) {
            complain("status " + std::to_string(outcome_.status) + ", expected " +
                     std::to_string(status));
        }
    }
    [[nodiscard]] std::string nextLine() const {
        return next_ < outcome_.lines.size() ? outcome_.lines[next_] : "nothing";
    }
    /// @return how many reads without a byte are logged here
    int skipReadsWithoutBytes() {
        int count = 0;
        for (; nextLine() == kNothingRead; ++next_) {
            ++count;
        }
        return count;
    }
    /// Whether this line comes next; it is passed then.
    bool takeLine(const std::string& line) {
        const bool isNext = nextLine() == line;
        next_ += isNext ? 1 : 0;
        return isNext;
    }
    /// The failure that the next line tells, when it tells of a command that the model lacks.
    [[nodiscard]] std::optional<Failure> unsupportedCommand(const std::string& name) const {
        const std::size_t start = nextLine().find("DriverException (0xa0515013): Command <" + name +
                                                  "> is not supported for type ");
        if (start == std::string::npos) {
            return std::nullopt;
        }
        return Failure{ORVEX_ERR_NOT_SUPPORTED, nextLine().substr(start)};
    }
    void takeAnyRequestLine() {
        const std::string line = nextLine();
        if (line.rfind("Send [", 0) != 0) {
            complain("expected the line of a request, got <" + line + ">");
            return;
        }
        ++next_;
    }
    [[nodiscard]] Lines end() {
        skipReadsWithoutBytes();
        if (next_ < outcome_.lines.size()) {
            complain("a line too many: <" + nextLine() + ">");
        }
        return complaints_;
    }

  private:
    const Outcome& outcome_;
    std::size_t next_ = 0;
    Lines complaints_;
};

/// A reply that did not end: three reads without a byte, or one that found the port's end.
Failure unansweredExchange(Check& check, bool portEnded) {
    const int reads = check.skipReadsWithoutBytes();
    if (portEnded && check.takeLine(kReadFailed)) {
        return {ORVEX_ERR_RECV, exceptionText("a0515019", "SerialLink::recvArray: read.")};
    }
    if (reads < 3) {
        check.complain("gave up after " + std::to_string(reads) + " reads");
    }
    return {ORVEX_ERR_RECV,
            exceptionText("a0515019", "SerialLink::recvChar: Wrong recv length: 0")};
}

std::optional<Failure> checkExchange(Check& check, const Exchange& exchange, bool portEnded) {
    check.expectLine("Send [" + exchange.request + "*] ->");
    if (!isWhole(exchange.reply)) {
        return unansweredExchange(check, portEnded);
    }
    const std::string reply = taken(exchange.reply);
    if (reply == "e\r") {
        check.skipReadsWithoutBytes();
        return Failure{
            ORVEX_ERR_IO,
            exceptionText("80515003", "LightDevice::executeString: Command \"" + exchange.request +
                                          "\" answered with error \"e\\r\"")};
    }
    check.expectLine(receivedLine(reply));
    return std::nullopt;
}

/// All exchanges of a call: the first that fails is the last.
std::optional<Failure> checkExchanges(Check& check, const std::vector<Exchange>& exchanges,
                                      const Connection& connection) {
    const bool portEnded = connection.wasPluggedIn && !connection.isPluggedIn;
    std::optional<Failure> failure;
    for (const Exchange& exchange : exchanges) {
        if (failure) {
            check.complain("went on with <" + exchange.request + "> after a failure");
            break;
        }
        failure = checkExchange(check, exchange, portEnded);
    }
    return failure;
}

/// A call on a port that ended before it: its first request cannot be sent.
std::optional<Failure> checkDeadLink(Check& check) {
    if (check.nextLine() == "nothing") {
        return std::nullopt;
    }
    check.takeAnyRequestLine();
    check.expectLine(kPurgeFailed);
    return Failure{ORVEX_ERR_IO, exceptionText("80515003", "SerialLink::purge: read.")};
}

/// A device that is not connected. One of LEDs that has not been read out passes for a lamp, whose
/// commands it lacks.
std::optional<Failure> checkMissingLink(Check& check) {
    if (check.nextLine() == "nothing") {
        return std::nullopt;
    }
    if (const auto unknown = check.unsupportedCommand("CloseShutter")) {
        return unknown;
    }
    check.expectLine("Error: LightDevice::executeString: LightDevice is not connected.");
    return Failure{ORVEX_ERR_NOT_CONNECTED, "DriverException (0x80517006) "};
}

std::optional<Failure> checkConversation(Check& check, const std::vector<Exchange>& exchanges,
                                         Connection& connection) {
    if (!connection.hasLink || connection.linkIsDead) {
        if (!exchanges.empty()) {
            check.complain("sent something without a link");
        }
        return connection.hasLink ? checkDeadLink(check) : checkMissingLink(check);
    }
    const auto failure = checkExchanges(check, exchanges, connection);
    connection.linkIsDead = !connection.isPluggedIn;
    return failure;
}

/// The one that reads the device out.
void checkFirstOpen(Check& check, const std::vector<Exchange>& exchanges, Connection& connection) {
    if (connection.linkIsDead) {
        check.expectLine("Error: SerialLink::~SerialLink:" + kRestoreFailed);
        connection.linkIsDead = false;
    }
    connection.hasLink = false;
    if (!connection.wasPluggedIn) {
        check.expectLine("Error: SerialLink::connect: open port: " + connection.port);
        check.expectLine(
            "Error: SerialLink::connect: Error 2 from open: No such file or directory");
        check.expectLine("Error: LightDevice::openConnection: connect() failed: 2689683463");
        check.expectLine("Error: ORVEX_OpenDeviceEx: handle does not match found device.");
        check.expectStatus(ORVEX_ERR_NO_DEVICE);
        return;
    }
    if (exchanges.empty()) {
        check.complain("opened without a request");
    }
    connection.hasLink = true;
    const auto failure = checkConversation(check, exchanges, connection);
    check.expectStatus(failure ? failure->status : ORVEX_OK);
    if (!failure) {
        connection.opens = 1;
        return;
    }
    if (exchanges.size() == 1) {  // "Connect": the port is released.
        check.expectLine("Error: LightDevice::openConnection: " + failure->text);
        if (connection.linkIsDead) {
            check.expectLine("Error: SerialLink::disconnect:" + kRestoreFailed);
        }
        connection.hasLink = false;
        connection.linkIsDead = false;
    }
    check.expectLine("Error: ORVEX_OpenDeviceEx: failed. Exception: " + failure->text);
}

void checkOpen(Check& check, const std::vector<Exchange>& exchanges, Connection& connection) {
    if (connection.opens == 0) {
        checkFirstOpen(check, exchanges, connection);
        return;
    }
    if (!exchanges.empty()) {
        check.complain("sent something to an open device");
    }
    check.expectStatus(ORVEX_OK);
    ++connection.opens;
}

void checkClose(Check& check, const std::vector<Exchange>& exchanges, Connection& connection) {
    const bool isLast = connection.hasLink && --connection.opens == 0;
    if (!isLast) {
        if (!exchanges.empty()) {
            check.complain("sent something at a close that is not the last");
        }
        return;
    }
    if (const auto failure = checkConversation(check, exchanges, connection)) {
        check.expectLine(
            "Error: LightDevice::closeConnection: execute CloseShutter failed. "
            "Exception: " +
            failure->text);
    } else if (exchanges.empty()) {
        check.complain("closed without a request");
    }
    if (connection.linkIsDead) {
        check.expectLine("Error: SerialLink::~SerialLink:" + kRestoreFailed);
    }
    connection.hasLink = false;
    connection.linkIsDead = false;
}

void checkCall(Check& check, const std::string& origin, const Outcome& outcome,
               const std::vector<Exchange>& exchanges, Connection& connection) {
    const auto failure = checkConversation(check, exchanges, connection);
    check.expectStatus(failure ? failure->status : ORVEX_OK);
    if (failure) {
        check.expectLine("Error: " + origin + ": failed. Exception: " + failure->text);
    } else if (!exchanges.empty() && !outcome.reply.empty() &&
               outcome.reply != asLine(taken(exchanges.back().reply))) {
        check.complain("returned <" + outcome.reply + ">");
    }
}

}  // namespace

std::vector<std::string> complaints(const Step& step, const Outcome& outcome,
                                    const std::vector<Exchange>& exchanges,
                                    Connection& connection) {
    Check check(outcome);
    switch (step.kind) {
        case StepKind::open:
            checkOpen(check, exchanges, connection);
            break;
        case StepKind::close:
            checkClose(check, exchanges, connection);
            break;
        case StepKind::command:
            checkCall(check, "ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand", outcome,
                      exchanges, connection);
            if (outcome.lines.empty()) {
                check.complain("carried out a command without a word");
            }
            break;
        case StepKind::writeRecord:
            checkCall(check, "ORVEX_SetOVStruct", outcome, exchanges, connection);
            break;
        case StepKind::switchOff:
        case StepKind::switchOn:
            checkCall(check, "ORVEX_SwitchOrvex", outcome, exchanges, connection);
            break;
    }
    return check.end();
}

}  // namespace orvex_test
