#include "ctl/secrets.h"

#include "base/text.h"

#include <istream>
#include <iterator>

namespace vardelin::ctl {
namespace {

std::string wholeInput(std::istream& in)
{
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

std::string readFile(const Session& session, const std::string& typed)
{
    return typed == "-" ? wholeInput(session.terminal.in)
                        : session.files().readAll(session.typedPath(typed));
}

std::string secretFrom(const Session& session, const std::string& typed)
{
    const std::string text = readFile(session, typed);
    std::string_view line = base::beforeFirst(text, "\n");
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return std::string(line);
}

} // namespace vardelin::ctl
