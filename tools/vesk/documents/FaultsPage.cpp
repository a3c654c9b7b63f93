// SPDX-License-Identifier: MIT
#include "tools/vesk/documents/FaultsPage.h"

#include "tools/vesk/text/Text.h"
#include "virtualmodule/faults/Faults.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace VeskTool {

using VirtualModule::FaultKind;
using VirtualModule::Outcome;

namespace {

constexpr const char* INTRODUCTION = R"(# When something goes wrong

This page is made by `vesk generate faults`, from the table of faults that the tests check; do not edit it.

What goes wrong shows as an exception out of `Update`: a type and a text. Find it in the table below. Afterwards
`Reset`, or a new module object, starts from the beginning; both begin with a reset of the module. `vesk explain "TEXT"`
says the same about a text, and `vesk status` tries a start and names the first thing that is not right.

## What the application must watch itself

The library limits the time for the first interrupt after a reset (2 s; in the bootloader 1 s), for a download of the
configuration and for the initialisation (10 s each), and for the answer to each request (1 s to 10 s from the moment
that it is sent, as its time-out says). It has no time limit for what follows. The application must watch these with a
clock of its own, and reset the module when one takes too long.

- **A register of the bootloader that never settles.** `Update` reads the module's indication register in pairs until
  the two reads of a pair agree, and it writes the host's register until what it reads back agrees with what it wrote.
  Both are repeated without limit within one call of `Update`: it does not return while the register flickers or while
  the DPRAM takes no writes. It ends as soon as the register settles. So this one cannot be watched from the thread that
  calls `Update`. The master's registers are read and written once.
- **A message that is answered but never acknowledged.** The mailbox stays taken, so the requests after it wait, and the
  time of a request does not run before it is sent. While the configuration is downloaded and during the initialisation
  their 10 s end the wait; after the initialisation, in the bootloader, and in a master without a configuration that is
  not being initialised, nothing does.
- **A module that falls silent while no request is outstanding.** The state stays as it is, and the output data keep
  their last values. An application that asks for something now and then, the live list for instance, gets a time-out.
- **A module that says "no database" each time.** Then the download starts over, each time with a reset and a time limit
  of its own, for ever, and wears the module's flash out. Watch how long it takes until `Configured`.
- **Going online.** After `Initialized`, and after `SetOperationMode`, nothing limits the time until the callback
  reports that the module is online or in the new mode.

## What cannot be detected

Nothing guards the process data and the data of an answer (the extended words of its header included): a byte of them
that is corrupted on its way reaches the application as it is. Of an answer the library checks that message id, type and
command are those of the request, that the error code exists and that the data size is none above 256. Of a download it
compares the checksum that the module keeps as the description of its database, not the records themselves. Data that
must not be wrong need a check of their own, from the slave to the application.

## What the library says

`…` stands for any text. The last column is for trying it at a desk: on a `vesk module --fault NAME` the command `vesk
run`, or `vesk flash` for what happens in the bootloader, ends in this way; after "at times" stand the faults that may
do so at another step, with another value or in the other program. These may end in any way, and stand only where they
usually end:
)";

constexpr const char* TABLE_HEAD = R"(
| What you see | What it means | What to check first | What to do then | Faults |
|---|---|---|---|---|
)";

constexpr const char* OTHERS_HEAD = R"(
## What else it says

No fault of the module leads to these: they are about files, and about the application's own calls. The last ones stand
for whatever else an exception of that type says.

| What you see | What it means | What to check first | What to do then |
|---|---|---|---|
)";

constexpr const char* TOOL_HEAD = R"(
## What the command line says

Behind `vesk: ` stands one of these where the command itself has found it, and below that what the other columns say.

| What you see | What it means | What to check first | What to do then |
|---|---|---|---|
)";

/// A fault that may end in every way there is says nothing about any of them.
bool EndsAnyhow(const FaultKind& kind) {
    return kind.outcomes.size() > VirtualModule::AllOutcomes().size();
}

std::string Code(std::string_view text) {
    return "`" + std::string(text) + "`";
}

/// Each line of the message as code.
std::string Seen(const Outcome& outcome) {
    if (!outcome.IsException())
        return "no exception";
    std::vector<std::string> lines;
    if (outcome.type.find('.') != std::string_view::npos)
        lines.push_back(Code(outcome.type));
    std::string line;
    for (const char character : std::string(outcome.message) + "\n")
        if (character == '*' || character == '#')
            line += "…";
        else if (character != '\n')
            line += character;
        else if (!line.empty())
            lines.push_back(Code(std::exchange(line, "")));
    return Joined(lines, "<br>");
}

/// What the table says of it, up to the bar behind its last column but the faults.
std::string Row(const Outcome& outcome) {
    std::string row = "| " + Seen(outcome) + " |";
    for (const std::string_view cell : {outcome.means, outcome.check, outcome.next})
        row += (cell.empty() ? "" : " ") + std::string(cell) + " |";
    return row;
}

/// What to give to --fault; the first row of a name does without a value.
std::string Argument(const FaultKind& kind) {
    const bool first = &kind == &VirtualModule::KindOf(kind.id);
    return std::string(kind.name) + (first ? "" : "=" + std::to_string(kind.values.usual));
}

std::string Provokers(const Outcome& outcome) {
    std::vector<std::string> sure;
    std::vector<std::string> possible;
    std::set<std::string_view> known;
    for (const FaultKind& kind : VirtualModule::Faults())
        if (&kind.Promise() == &outcome) {
            sure.push_back(Code(Argument(kind)));
            known.insert(kind.name);
        }
    for (const FaultKind& kind : VirtualModule::Faults()) {
        const bool ends = std::count(kind.outcomes.begin(), kind.outcomes.end(), &outcome) > 0;
        if (ends && !EndsAnyhow(kind) && known.insert(kind.name).second)
            possible.push_back(Code(kind.name));
    }
    if (!possible.empty())
        possible.front() = "at times " + possible.front();
    return Joined(sure, ", ") + (sure.empty() || possible.empty() ? "" : "; ") + Joined(possible, ", ");
}

} // namespace

std::string FaultsPage() {
    std::vector<std::string> anyhow;
    for (const FaultKind& kind : VirtualModule::Faults())
        if (EndsAnyhow(kind))
            anyhow.push_back(Code(kind.name));
    std::string page = INTRODUCTION + Joined(anyhow, ", ") + ".\n" + TABLE_HEAD;
    const auto& outcomes = Failures::AllOutcomes();
    for (const Outcome* outcome : outcomes)
        page += Row(*outcome) + " " + Provokers(*outcome) + " |\n";
    page += OTHERS_HEAD;
    for (const Outcome* failure : Failures::AllFailures())
        if (std::count(outcomes.begin(), outcomes.end(), failure) == 0)
            page += Row(*failure) + "\n";
    page += TOOL_HEAD;
    for (const Outcome* failure : Failures::ToolFailures())
        page += Row(*failure) + "\n";
    return page;
}

} // namespace VeskTool
