// SPDX-License-Identifier: MIT
#include "dbus/Cycle.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/system/MakeShared.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Vesk::DBus {

using Outcome = Question::Outcome;
using State = Modules::DPVM::Vt22Module::ModuleState_e;

/// Longer than any slave takes: a time-out comes out of the application's Update, and ends its life.
static constexpr int REQUEST_SECONDS = 60;

std::shared_ptr<Cycle> Cycle::Create(std::shared_ptr<Vt22Module> master, bool measures,
                                     std::function<void()> wake) {
    auto cycle = System::MakeShared<Cycle>(measures, std::move(wake));
    cycle->SetMaster(std::move(master));
    return cycle;
}

Cycle::Cycle(bool measures, std::function<void()> wake)
    : _measures(measures), _held(HostInterface::MasterDpRam::INPUT_AREA_SIZE), _wake(std::move(wake)) {}

void Cycle::SetMaster(std::shared_ptr<Vt22Module> master) {
    Fail("the application has let go of the module");
    if (_master && _master != master && _master->Booted()) // it may live on, with the application's bytes
        for (const HeldByte& held : _held)
            if (held.mask != 0)
                _master->ReleaseInput(held.offset);
    _master = std::move(master);
    if (!_master) {
        Facts none;
        none.failure = std::move(_facts.failure);
        _facts = std::move(none);
        return _latest.Put(_facts);
    }
    _masterInterrupts = &_master->Interrupts();
    _seenInterrupts = _master->Interrupts();
    _seenMessages = _master->Messages();
    if (!_facts.failure)
        NoteChange();
    _seenState = NO_STATE;
}

// ---- the step

void Cycle::Step(std::int64_t begun) {
    Vt22Module* const master = _master.get();
    if (!master)
        System::_env_throw(System::InvalidOperationException::Create("no module to update"));
    try {
        master->Update(); // which keeps itself, whatever its callbacks let go of
    } catch (...) {
        NoteFailure(std::current_exception());
        throw;
    }
    _updates.Add(1);
    if (_master.get() != master)
        return;
    if (const unsigned int interrupts = *_masterInterrupts; interrupts != _seenInterrupts) {
        _interrupts.Add(interrupts - std::exchange(_seenInterrupts, interrupts));
        _heardOf = begun;
        CountMessages();
    }
    if (static_cast<int>(_master->State()) != _seenState || _master->Reports() != _seenReports)
        NoteChange();
}

void Cycle::CountMessages() {
    const unsigned int messages = _master->Messages();
    _messages.Add(messages - std::exchange(_seenMessages, messages));
}

void Cycle::Measure(std::int64_t begun, std::int64_t ended) {
    _updateTime.Add(static_cast<std::uint64_t>(ended - begun));
    if (_begun != UNKNOWN)
        _period.Add(static_cast<std::uint64_t>(begun - _begun));
    _begun = begun;
}

static void CopyList(const std::shared_ptr<System::IArray<unsigned char>>& from, StationList& to) {
    std::copy_n(from->Data(), std::min<std::size_t>(to.size(), static_cast<std::size_t>(from->Count())),
                to.begin());
}

static Facts::Identity IdentityOf(Modules::DPVM::Vt22Module& master) {
    return {master.VendorId(),
            master.FieldbusType(),
            master.ModuleType(),
            master.Serial(),
            {master.SoftwareMajor(), master.SoftwareMinor(), master.SoftwareBuild()},
            {master.BootloaderMajor(), master.BootloaderMinor()}};
}

void Cycle::NoteChange() {
    Facts facts;
    facts.state = _master->State();
    facts.database = _master->ReportedDatabase();
    if (_master->Booted()) { // what it said before a reset is over
        facts.online = _master->Online();
        facts.mode = _master->OperationMode();
        facts.identity = IdentityOf(*_master);
        CopyList(_master->GetSlaveConfiguredList(), facts.configured);
        CopyList(_master->GetDataTransferList(), facts.exchanging);
        CopyList(_master->GetSlaveDiagnosticList(), facts.diagnostic);
        CopyList(_master->GetDpv1ConnectionLiveList(), facts.connected);
    }
    if (facts.state >= State::INITIALIZING && static_cast<int>(facts.state) != _seenState)
        HoldAgain();
    _seenState = static_cast<int>(facts.state);
    _seenReports = _master->Reports();
    _facts = std::move(facts);
    _latest.Put(_facts);
}

void Cycle::NoteFailure(const std::exception_ptr& thrown) noexcept try {
    auto failure = std::make_shared<UpdateFailure>();
    failure->time = std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::system_clock::now().time_since_epoch())
                        .count();
    try {
        std::rethrow_exception(thrown);
    } catch (const std::shared_ptr<System::Exception>& exception) {
        failure->type = exception->TypeName().Value();
        failure->message = exception->Message().IsNull() ? "" : exception->Message().Value();
        if (const auto fatal = std::dynamic_pointer_cast<Modules::DPVM::Vt22FatalEventException>(exception)) {
            failure->fatalEvent = fatal->Info();
            const System::String& path = RuntimeConfig::_hostInterfaceDumpPath;
            failure->dump = path.IsNull() ? "" : path.Value();
        }
        if (std::dynamic_pointer_cast<Mailbox::MailboxTimeoutException>(exception))
            _timeOuts.Add(1);
    } catch (const std::exception& exception) {
        failure->type = "std::exception";
        failure->message = exception.what();
    } catch (...) {
        failure->type = "unknown";
    }
    Fail(failure->type + ": " + failure->message);
    _facts.failure = std::move(failure);
    _seenState = NO_STATE; // so that the first Update that works makes new facts
    _latest.Put(_facts);
    _wake();

} catch (...) { // NOLINT(bugprone-empty-catch): without memory for it, the application still hears of it
}

// ---- questions

/// What the module keeps as the action of a request: hands the answer over, and tells when there will be
/// none, because a reset has thrown the request away.
class Cycle::Answerer : public Mailbox::IResponseAction {
public:
    Answerer(std::weak_ptr<Cycle> cycle, unsigned int ticket) : _cycle(std::move(cycle)), _ticket(ticket) {}

    Answerer(const Answerer&) = delete;
    Answerer& operator=(const Answerer&) = delete;

    ~Answerer() override {
        if (const auto cycle = Waiting())
            cycle->Fail("the module was reset before it answered");
    }

    void Invoke(std::shared_ptr<Mailbox::IResponse> response) override {
        if (const auto cycle = Waiting())
            cycle->OnAnswer(*response);
    }

private:
    std::shared_ptr<Cycle> Waiting() const {
        auto cycle = _cycle.lock();
        return cycle && cycle->_ticket == _ticket && cycle->_question ? cycle : nullptr;
    }

    std::weak_ptr<Cycle> _cycle;
    unsigned int _ticket;
};

static std::string WordsOf(System::Exception& exception) {
    return exception.Message().IsNull() ? exception.TypeName().Value() : exception.Message().Value();
}

void Cycle::Begin() {
    _question = _requests.Take();
    if (!_question)
        return;
    _request = 0;
    if (!IsReady(*_question))
        return Finish(_question->outcome, std::move(_question->why));
    try {
        Send();
    } catch (const std::shared_ptr<System::Exception>& exception) {
        if (_question)
            Finish(Outcome::INVALID, WordsOf(*exception));
    }
}

void Cycle::AnswerOther() {
    Question* const question = _others.Take();
    if (!question)
        return;
    try {
        Perform(*question);
    } catch (const std::shared_ptr<System::Exception>& exception) {
        question->outcome = Outcome::INVALID;
        question->why = WordsOf(*exception);
    }
    _others.Answer();
    _wake();
}

void Cycle::Perform(Question& question) {
    if (question.kind == Question::Kind::RELEASE)
        Release(question.bytes);
    else if (IsReady(question))
        question.kind == Question::Kind::HOLD ? Hold(question.bytes) : TakeSnapshot(question);
}

/// Whether the module can be asked; the question has its answer otherwise.
bool Cycle::IsReady(Question& question) const {
    if (!_facts.failure && _master && _master->Initialized())
        return true;
    question.outcome = _facts.failure ? Outcome::FAILED : Outcome::NOT_READY;
    question.why = _facts.failure ? _facts.failure->type + ": " + _facts.failure->message
                   : _master      ? "the module is " + Vt22Module::StateToString(_master->State()).Value()
                                  : "the application has no module";
    return false;
}

void Cycle::TakeSnapshot(Question& question) {
    question.data.resize(static_cast<std::size_t>(_master->CopyInputData(question.data)));
    question.output.resize(static_cast<std::size_t>(_master->CopyOutputData(question.output)));
    question.time = _heardOf != UNKNOWN ? _heardOf : Now();
}

void Cycle::Hold(const std::vector<HeldByte>& bytes) {
    std::size_t done = 0;
    try {
        for (; done < bytes.size(); ++done)
            _master->HoldInput(bytes[done].offset, bytes[done].value, bytes[done].mask);
    } catch (...) { // then none of them
        while (done > 0)
            Restore(bytes[--done].offset);
        throw;
    }
    for (const HeldByte& byte : bytes)
        _held[byte.offset].Add(byte);
}

/// The byte, of which a moment ago bits could be held, as it was before.
void Cycle::Restore(unsigned short offset) {
    _master->ReleaseInput(offset);
    if (const HeldByte& held = _held[offset]; held.mask != 0)
        _master->HoldInput(offset, held.value, held.mask);
}

/// What a reset has let go of.
void Cycle::HoldAgain() {
    for (const HeldByte& held : _held)
        try {
            if (held.mask != 0)
                _master->HoldInput(held.offset, held.value, held.mask);
        } catch (const System::ArgumentOutOfRangeException&) {
            // not mapped any more: nothing of it goes to the bus
        }
}

void Cycle::Release(const std::vector<HeldByte>& bytes) {
    for (const HeldByte& byte : bytes) {
        _held[byte.offset] = {};
        if (_master && _master->Booted())
            _master->ReleaseInput(byte.offset);
    }
}

void Cycle::Send() {
    _master->Enqueue(_question->requests[_request], std::make_shared<Answerer>(weak_from_this(), ++_ticket),
                     REQUEST_SECONDS);
}

void Cycle::OnAnswer(Mailbox::IResponse& response) {
    const bool refused = response.Error() != Mailbox::ErrorCode::NO_ERROR;
    if (_request <= _question->deciding) {
        _question->outcome = refused ? Outcome::REFUSED : Outcome::ANSWERED;
        _question->errorCode = response.Error()->Id;
        _question->why = response.Error()->Name.Value();
        const auto data = response.Data();
        _question->data.assign(data->begin(), data->end());
    }
    const bool over = refused && _request < _question->deciding;
    if (over || ++_request == _question->requests.size())
        return Finish(_question->outcome, std::move(_question->why));
    Send();
}

void Cycle::Finish(Outcome outcome, std::string why) {
    _question->outcome = outcome;
    _question->why = std::move(why);
    _question = nullptr;
    _requests.Answer();
    _wake();
}

void Cycle::Fail(const std::string& why) {
    if (_question)
        Finish(Outcome::FAILED, why);
}

} // namespace Vesk::DBus
