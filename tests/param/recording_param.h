// A tree whose nodes write down the calls made on them, and fail where they are told to.
#ifndef QXCORE_TESTS_PARAM_RECORDING_PARAM_H
#define QXCORE_TESTS_PARAM_RECORDING_PARAM_H

#include "param/tree_text.h"

#include <functional>
#include <string>

class RecordingParam : public CQXUnknownImpl<IParam> {
public:
    // Takes over the node that does the work.
    RecordingParam(IParam* node, std::string path, std::string* calls)
        : m_node(node), m_path(std::move(path)), m_calls(calls) {
        ++alive;
    }
    ~RecordingParam() override { --alive; }

    IParam* CreateSubParam(const char* name) override {
        Record("CreateSubParam", name);
        return Child(m_node->CreateSubParam(name), name);
    }
    IParam* OpenSubParam(const char* name, int create) override {
        Record("OpenSubParam", name);
        return Child(m_node->OpenSubParam(name, create), name);
    }
    void DeleteSubParam(const char* name) override {
        Record("DeleteSubParam", name);
        m_node->DeleteSubParam(name);
    }
    void DeleteAllSubParams() override {
        Record("DeleteAllSubParams");
        m_node->DeleteAllSubParams();
    }
    CTEnum<const char*>* EnumSubParams() override {
        Record("EnumSubParams");
        if (atEnumSubParams) atEnumSubParams();
        return noSubParams ? nullptr : m_node->EnumSubParams();
    }
    int GetValue(const char* name, tagQXVARIANT* out) override {
        Record("GetValue", name);
        return m_node->GetValue(name, out);
    }
    int SetValue(const char* name, const tagQXVARIANT* value) override {
        Record("SetValue", name);
        return m_node->SetValue(name, value);
    }
    int DeleteValue(const char* name) override {
        Record("DeleteValue", name);
        return m_node->DeleteValue(name);
    }
    void DeleteAllValues() override {
        Record("DeleteAllValues");
        m_node->DeleteAllValues();
    }
    CTEnum<const char*>* EnumValues() override {
        Record("EnumValues");
        return noValues ? nullptr : m_node->EnumValues();
    }
    void Clear() override {
        Record("Clear");
        m_node->Clear();
    }

    static inline int alive = 0;

    bool noSubParams = false, noValues = false;
    bool noChild = false;                   // CreateSubParam and OpenSubParam answer null
    std::string failAt;                     // the call that throws CXFileException
    int failBelow = 0;                      // ... in nodes at least so many levels down
    std::function<void()> atEnumSubParams;  // called then; children have none

private:
    ParamPtr m_node;
    std::string m_path;
    std::string* m_calls;

    void Record(const char* operation, const char* name = nullptr) {
        std::string call = name ? operation + ("(" + std::string(name) + ")") : operation;
        *m_calls += m_path + ":" + call + " ";
        if (call == failAt && failBelow <= 0)
            throw CXFileException(QXERR_DEVICE, "recording", QXOP_WRITE);
    }
    IParam* Child(IParam* node, const char* name) {
        if (!node) return nullptr;
        ParamPtr opened(node);
        if (noChild) return nullptr;
        auto child = new RecordingParam(opened.Detach(), m_path + "\\" + name, m_calls);
        child->failAt = failAt;
        child->failBelow = failBelow - 1;
        return child;
    }
};

#endif
