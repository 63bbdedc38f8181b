// SFM.cpp - the file manager, its event data and the registry of live
// managers.
#include "SFM.h"

#include "SFM_File.h"
#include "SFM_FilePath.h"
#include "SFM_MessageDB.h"
#include "SYS_Resource.h"
#include "sfm/internal/SFM_Registry.h"
#include "ssm/internal/SSM_Check.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

SFM* SFM::Instance = nullptr;
long SFM::InstanceCount = 0;
int SFM::s_bThrowMemException = 1;

namespace {

// Never destroyed, so files that outlive static destruction can still leave it.
std::vector<SFM*>& LiveManagers() {
    static std::vector<SFM*>* managers = new std::vector<SFM*>;
    return *managers;
}

// strerror_r comes in two shapes; both give the text here.
[[maybe_unused]] inline const char* ErrorText(int result, const char* buffer) {
    return result == 0 ? buffer : "";
}
[[maybe_unused]] inline const char* ErrorText(const char* result, const char*) { return result; }

// The system's text for `error`, or null when it knows no such error (where
// it would answer "Unknown error N").
const char* SystemErrorText(int error, char* buffer, size_t size) {
    if (!strerrorname_np(error)) return nullptr;
    return ErrorText(strerror_r(error, buffer, size), buffer);
}

// The first registered file called `name`, or files.end().
std::list<SFM_File*>::iterator FindFile(std::list<SFM_File*>& files, const SYS_StringBase& name) {
    return std::find_if(files.begin(), files.end(),
                        [&name](SFM_File* f) { return f->GetName() == name; });
}

} // namespace

void SFM_AddManager(SFM* manager) { LiveManagers().push_back(manager); }

void SFM_RemoveManager(SFM* manager) {
    std::vector<SFM*>& live = LiveManagers();
    live.erase(std::remove(live.begin(), live.end(), manager), live.end());
}

void SFM_ForgetFile(SFM_File* file) {
    for (SFM* manager : LiveManagers()) manager->files.remove(file);
}

// --- SFM_EventData ---------------------------------------------------------

SFM_EventData::SFM_EventData(const char* name1, const char* name2)
    : error(0), fileName1(name1), fileName2(name2), result(SFM::NoAnswer) {}

void SFM_EventData::SetResult(SFM::EventCode answer) {
    if (answer != SFM::NoAnswer && result != SFM::NoAnswer) SSM_CheckFailed("", "sfm/sfmanagr", 96);
    result = answer;
}

SYS_StringBase SFM_EventData::GetText() const {
    SYS_StringBase all = text;
    if (!fileName1.IsEmpty()) all += "\r\n\"" + fileName1 + "\"";
    if (!fileName2.IsEmpty()) all += "\r\n\"" + fileName2 + "\"";
    return all;
}

// --- SFM -------------------------------------------------------------------

SFM::SFM() : m_ClosedForRetry(0), m_Counted(1) {
    SSM_CHECK(InstanceCount == 0, "sfm/sfmanagr", 40);
    SSM_CHECK(!Instance, "sfm/sfmanagr", 41);
    ++InstanceCount;
    Instance = this;
    SFM_AddManager(this);
}

SFM::SFM(SFM& other)
    : files(other.files), messages(other.messages), event(other.event), m_ClosedForRetry(0),
      m_Counted(0) {
    SFM_AddManager(this);
}

SFM& SFM::operator=(SFM& other) {
    if (&other == this) return *this;
    files = other.files;
    messages = other.messages;
    event = other.event;
    return *this;
}

// The database goes first, while its file can still reach the manager.
SFM::~SFM() {
    messages.reset();
    if (m_Counted) --InstanceCount;
    if (Instance == this) Instance = nullptr;
    SFM_RemoveManager(this);
}

void SFM::Initiate(const char* path) {
    if (messages) return;
    SSM_CHECK(path, "sfm/sfmanagr", 212);
    if (!path) return;
    if (SFM_FilePath(path).GetFileExtension().CompareNoCase(".mdb") == 0)
        messages = std::make_shared<SFM_MessageDB>(SYS_StringBase(path));
    else
        messages = std::make_shared<SFM_MessageDB>(SYS_StringBase(path), 0);
}

int SFM::IsValid() {
    int valid = 1;
    if (!messages) {
        SSM_CheckFailed("", "sfm/sfmanagr", 230);
        valid = 0;
    } else if (!messages->IsValid()) {
        SSM_CheckFailed("", "sfm/sfmanagr", 231);
        valid = 0;
    }
    for (SFM_File* file : files) {
        if (file->IsValid()) continue;
        SSM_CheckFailed("", "sfm/sfmanagr", 233);
        valid = 0;
    }
    return valid;
}

SFM::EventCode SFM::Event(EventCode code, SFM_EventData& data) {
    data.result = NoAnswer;
    data.error = static_cast<unsigned long>(errno);

    // Out of descriptors: make room and have the open tried again, without
    // troubling the host.
    if (code == FileOpenFailed && data.error == EMFILE) {
        m_ClosedForRetry = TempCloseSomeFile();
        return Retry;
    }
    if (code == FileOpening) {
        auto it = FindFile(files, data.fileName1);
        if (it != files.end()) files.splice(files.begin(), files, it);
    } else if (code > FailureThreshold) {
        CreateMessage(code, data);
    }

    event.Notify(code, &data);

    if (code > FailureThreshold) {
        auto it = FindFile(files, data.fileName1);
        if (it != files.end()) (*it)->SetMsg(data.GetText());
    }
    return data.GetResult();
}

void SFM::CreateMessage(EventCode, SFM_EventData& data) {
    const int error = static_cast<int>(data.error);
    char buffer[256];
    if (const char* text = SystemErrorText(error, buffer, sizeof buffer)) {
        data.SetText(text);
    } else {
        SYS_StringBase fallback;
        fallback.Format(TR(45103).GetString(), error);
        data.SetText(fallback);
    }
}

int SFM::TempCloseSomeFile() {
    for (auto it = files.rbegin(); it != files.rend(); ++it) {
        if (!(*it)->MayBeTempClosed()) continue;
        (*it)->TempClose();
        return 1;
    }
    return 0;
}
