#pragma once

#include "fcp/FrameRate.h"
#include "fcp/xml/XmlDocument.h"

#include <QByteArray>
#include <QString>

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <optional>
#include <stdexcept>
#include <string>

/// The options that commands share, and what their words mean.
namespace Arguments {

/// A command line that cannot be meant: exit status 2. The message is Chinese.
class WrongUse : public std::runtime_error
{
public:
    explicit WrongUse(const QString &message);
};

QString toText(const std::string &argument); ///< Text of the command line, which is UTF-8.
QString toPath(const std::string &argument); ///< A file name of the command line.

FrameRate toRate(const std::string &argument); ///< By its label. @throws WrongUse

/// The bytes of an input: of the file or pipe, or of standard input for "-". @throws PlatformError, Cancelled
QByteArray readInput(const std::string &argument);

/// The same for an input that must not be larger than `limit` bytes. @throws PlatformError when it is
QByteArray readInput(const std::string &argument, qint64 limit);

/// The project document of an input, whose relative sources are resolved against the file's folder, or against the
/// current one for standard input and pipes. @throws PlatformError, ConversionError, Cancelled
XmlDocument readProject(const std::string &argument);

/// As much of such a document as its texts are read from. @throws PlatformError, ConversionError, Cancelled
XmlDocument readProjectTexts(const std::string &argument);

/// The bytes of such an input, as they stand. @throws PlatformError, ConversionError, Cancelled
QByteArray readProjectBytes(const std::string &argument);

/// Refuses an empty value, which comes from a variable that was never set, as a wrong use.
extern const CLI::Validator notEmpty;

/// The input of a command that reads cues, and that of one that reads a project, of which `what` says more.
void addCues(CLI::App &command, std::string &input);
void addProject(CLI::App &command, std::string &input, const char *what = "项目");

/// The text of such an input: UTF-8, or what its byte order mark says. Line breaks become line feeds.
/// @throws ConversionError when it is not text; PlatformError, Cancelled
QString readText(const std::string &argument);

/// Where a result goes and how much is said about it.
struct Output
{
    std::string path; ///< Empty for standard output.
    bool json = false;
    bool progress = false;
    bool quiet = false;

    void addPath(CLI::App &command);     ///< -o, --output
    void addJson(CLI::App &command);     ///< --json
    void addProgress(CLI::App &command); ///< --progress, -q, --quiet

    bool isHeard() const; ///< Whether report() says anything.

    /// Says one line on standard error, if it is a terminal or progress was asked for.
    void report(const QString &line) const;
};

} // namespace Arguments
