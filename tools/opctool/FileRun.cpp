#include "FileRun.hpp"

#include "Command.hpp"
#include "Envelope.hpp"
#include "Failures.hpp"
#include "Messages.hpp"
#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <cstring>
#include <optional>
#include <utility>

namespace opctool {

using Format = OutputOptions::Format;

/// Hands the text on to the turn, with a prefix on each line that isn't empty if there is one.
class FileRun::Buffer : public std::streambuf {
public:
    Buffer(OrderedOutput::Turn& turn, bool isSilent, std::string prefix)
        : turn(turn), isSilent(isSilent), prefix(std::move(prefix)) {}

    void setPrefix(std::string text) { prefix = std::move(text); }

protected:
    int_type overflow(int_type character) override {
        const char text = traits_type::to_char_type(character);
        xsputn(&text, 1);
        return character;
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const auto all = static_cast<std::size_t>(size);
        if (isSilent)
            return size;
        if (prefix.empty())
            write(text, all);
        else
            for (std::size_t at = 0; at < all;)
                at += writeLine(text + at, all - at);
        return size;
    }

private:
    void write(const char* text, std::size_t size) { turn.write(OrderedOutput::Stream::Output, text, size); }

    /// Writes up to the end of the line. @return how much it has taken
    std::size_t writeLine(const char* text, std::size_t size) {
        const auto* const found = static_cast<const char*>(std::memchr(text, '\n', size));
        const std::size_t taken = found == nullptr ? size : static_cast<std::size_t>(found - text) + 1;
        if (isInLine || *text != '\n') {
            if (!isInLine)
                write(prefix.data(), prefix.size());
            write(text, taken);
            isInLine = found == nullptr;
        }
        return taken;
    }

    OrderedOutput::Turn& turn;
    const bool isSilent;
    std::string prefix;
    bool isInLine = false;
};

FileRun::FileRun(std::string path, const RunOptions& options, OrderedOutput::Turn& turn)
    : filePath(std::move(path)), runOptions(options), format(options.output.format()), turn(turn),
      buffer(std::make_unique<Buffer>(turn, options.output.quiet,
                                      options.isOneOfMany && format == Format::Text && !options.namesFiles
                                          ? withoutControlCharacters(filePath) + ": "
                                          : std::string())),
      output(buffer.get()) {
}

FileRun::~FileRun() = default;

JSONOutput& FileRun::json() {
    if (document)
        return *document;
    document = std::make_unique<JSONOutput>(
        output, format == Format::EnvelopeLine ? JSONOutput::Layout::OneLine : JSONOutput::Layout::Indented);
    if (hasEnvelope())
        beginEnvelope(*document, runOptions.command->name, filePath);
    return *document;
}

void FileRun::printName(const std::string& name) {
    if (wantsJSON())
        addName(json(), name);
    else
        printLine(name);
}

void FileRun::printLine(const std::string& line) {
    if (target() == "-" && !runOptions.dryRun)
        remark(line);
    else
        output << withoutControlCharacters(line) << '\n';
}

Table::Style FileRun::tableStyle() const {
    return {!runOptions.isOneOfMany, runOptions.output.colored};
}

void FileRun::tell(const std::string& text) {
    printError({}, Color::None, text);
}

/// Prints `opctool: FILE: CLASSTEXT`, with a colour for the class.
void FileRun::printError(const std::string& className, Color color, const std::string& text) {
    const std::string name = filePath.empty() ? "\"\"" : filePath;
    std::string line = messageLine(name, className + text);
    if (color != Color::None)
        line.replace(messageLine(name, {}).size() - 1, className.size(), paint(className, color));
    turn.write(OrderedOutput::Stream::Errors, line.data(), line.size());
}

void FileRun::remark(const std::string& text) {
    if (!runOptions.output.quiet)
        tell(text);
}

void FileRun::report(const std::vector<opc::interfaces::Oddity>& oddities) {
    if (hasEnvelope())
        for (const auto& oddity : oddities)
            addHidden({opc::toUDEString(oddity.place), oddity.line, oddity.what, oddity.done, oddity.rule});
    else
        for (const std::string& line : describeOddities(oddities, runOptions.output.verbose))
            remark(line);
}

void FileRun::addHidden(HiddenItem item) {
    hidden.push_back(std::move(item));
}

void FileRun::sayNo() {
    status = ANSWER_IS_NO;
}

int FileRun::finish(const std::exception* failure) {
    std::optional<Failure> described;
    if (failure != nullptr) {
        status = FAILURE;
        described = opc::scanning::describe(*failure, filePath);
        printError(described->className, runOptions.output.coloredErrors ? Color::Red : Color::None,
                   ": " + described->message);
    }
    if (format == Format::JSON && !document && failure == nullptr)
        addName(json(), {});
    if (hasEnvelope())
        endEnvelope(json(), status, hidden, described ? &*described : nullptr);
    const bool isElement = format == Format::Envelope && runOptions.isOneOfMany;
    if (document && !isElement)
        output << '\n';
    return status;
}

} // namespace opctool
