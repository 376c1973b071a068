// An object whose references and end can be watched.
#ifndef QXCORE_TESTS_VARIANT_PROBE_OBJECT_H
#define QXCORE_TESTS_VARIANT_PROBE_OBJECT_H

#include <qxcore/unknown.h>

class ProbeObject final : public CQXUnknownImpl<IQXUnknown> {
public:
    explicit ProbeObject(bool* alive = nullptr) : alive(alive) {
        if (alive) *alive = true;
    }
    ~ProbeObject() override {
        if (alive) *alive = false;
    }

    unsigned Refs() {
        AddRef();
        return Release();
    }

private:
    bool* alive;
};

// Holds the creator's reference for the length of a test.
class Probe {
public:
    Probe() : object(new ProbeObject) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() { object->Release(); }

    operator IQXUnknown*() const { return object; }
    unsigned Refs() const { return object->Refs(); }

private:
    ProbeObject* object;
};

#endif
