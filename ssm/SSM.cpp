// SSM.cpp - the assertion manager and the free functions that report to it.
#include "SSM.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

SSM* SSM::Instance = nullptr;
long SSM::InstanceCount = 0;

namespace {

// Records travel through the events' data pointer.
int* AsEventData(SSM::AssertData* r) { return reinterpret_cast<int*>(r); }

} // namespace

SSM::SSM()
    : Depth(-1), BadActionAssert(nullptr), CurrentAssert(nullptr), FatalAssert(nullptr),
      SilentMode(0) {
    ++InstanceCount;
    Instance = this;
}

SSM::SSM(SSM& other)
    : Depth(other.Depth), ActionEvent(other.ActionEvent), FailureEvent(other.FailureEvent),
      NotifyEvent(other.NotifyEvent), BadActionAssert(other.BadActionAssert),
      CurrentAssert(other.CurrentAssert), FatalAssert(other.FatalAssert), Asserts(other.Asserts),
      ActiveStack(other.ActiveStack), SilentMode(other.SilentMode) {}

SSM& SSM::operator=(SSM& other) {
    Depth = other.Depth;
    ActionEvent = other.ActionEvent;
    FailureEvent = other.FailureEvent;
    NotifyEvent = other.NotifyEvent;
    BadActionAssert = other.BadActionAssert;
    CurrentAssert = other.CurrentAssert;
    FatalAssert = other.FatalAssert;
    Asserts = other.Asserts;
    ActiveStack = other.ActiveStack;
    SilentMode = other.SilentMode;
    return *this;
}

// Copies decrement the count too: only the default constructor increments it.
SSM::~SSM() {
    --InstanceCount;
    Instance = nullptr;
    ActiveStack.clear();
    Asserts.clear();
    ActionEvent.RemoveAll();
    FailureEvent.RemoveAll();
    NotifyEvent.RemoveAll();
}

int SSM::GetSilentMode() { return Instance ? Instance->SilentMode : 0; }

void SSM::SetSilentMode(int on) {
    if (Instance) Instance->SilentMode = on;
}

int SSM::AssertFailed(const char* message, const char* file, int line, SSM_FailureType type,
                      int id) {
    ++Depth;
    int result = 1;
    bool requested = false;
    FatalAssert = nullptr;

    if (!file) file = "";
    AssertData fresh;
    fresh.File = file;
    fresh.Message = message;
    fresh.Line = line;
    fresh.Id = id;
    // The line is printed as an unsigned 32-bit value.
    SYS_StringBase key;
    key.Format("%s(%lu)", file, static_cast<unsigned long>(static_cast<uint32_t>(line)));

    AssertData* r = &Asserts.try_emplace(key, fresh).first->second;

    // A site already saved on the stack is failing inside its own nested
    // handling: ignore it rather than recurse without end.
    if (std::find(ActiveStack.begin(), ActiveStack.end(), r) == ActiveStack.end()) {
        ActiveStack.push_back(CurrentAssert);
        CurrentAssert = r;
        ++r->Count;
        r->Action = SSM_ActionContinue;
        r->Message = message;

        if (type == SSM_FailureFatal) {
            requested = true;
        } else if (SilentMode == 0 && r->Enabled) {
            r->Action =
                (Depth >= 1 && type != SSM_FailureSoft) ? SSM_ActionFail : SSM_ActionContinue;
            ActionEvent.Notify(type, AsEventData(r));
            switch (r->Action) {
            case SSM_ActionContinue:
                break;
            case SSM_ActionFail:
                result = 0;
                break;
            case SSM_ActionThrow:
                requested = true;
                break;
            case SSM_ActionThrowFatal:
                requested = true;
                FatalAssert = r;
                break;
            default:
                BadActionAssert = r;
                if (!SSM_AssertFailed("Assert handler encountered invalid action code.",
                                      "ssm/ssmimpl", 367, SSM_FailureFatal, 0))
                    SSM_Throw();
                break;
            }
        }

        FailureEvent.Notify(type, AsEventData(r));
        if (r->NotifyEnabled && r->Enabled) NotifyEvent.Notify(type, AsEventData(r));

        r->Action = SSM_ActionContinue;
        CurrentAssert = ActiveStack.back();
        ActiveStack.pop_back();
    }

    --Depth;
    if (requested) Throw();
    return result;
}

void SSM::Throw() {
    if (FatalAssert) throw FatalException{FatalAssert};
    if (CurrentAssert) throw CurrentAssert;
}

int SSM_AssertFailed(const char* message, const char* file, int line, SSM_FailureType type,
                     int id) {
    SSM* manager = SSM::Instance;
    const int savedErrno = errno;
    SYS_StringBase text(message);
    if (text.IsEmpty()) {
        if (id != 0)
            text.Format("SSM: Assert ID #%d, message not available", id);
        else
            text = "Message not available";
    }
    int result = manager && manager->AssertFailed(text, file, line, type, id) ? 1 : 0;
    errno = savedErrno;
    return result;
}

void SSM_Throw() {
    if (SSM::Instance) SSM::Instance->Throw();
}
