// What writes a changed copy of a dialog template while it is walked.
#ifndef QXCORE_TRANSLATE_RESOURCES_TEMPLATE_PASS_H
#define QXCORE_TRANSLATE_RESOURCES_TEMPLATE_PASS_H

#include "translate/resources/template_walk.h"

#include <qxcore/heap.h>

#include <algorithm>

namespace qx {

// The growing output of a pass.
class CDlgBuffer {
public:
    // Throws CXMemException, here and wherever the buffer grows.
    explicit CDlgBuffer(size_t capacity) : m_capacity(capacity) {
        m_data = static_cast<uint8_t*>(m_heap->Alloc(capacity + 1));
    }
    ~CDlgBuffer() { m_heap->Free(m_data); }
    CDlgBuffer(const CDlgBuffer&) = delete;
    CDlgBuffer& operator=(const CDlgBuffer&) = delete;

    // Room for `size` bytes at the end, of which the caller fills what he commits.
    uint8_t* Reserve(size_t size) {
        if (m_used + size > m_capacity) Grow(m_used + size);
        return m_data + m_used;
    }
    void Commit(size_t size) { m_used += size; }

    void Append(const void* bytes, size_t size) {
        memcpy(Reserve(size), bytes, size);
        m_used += size;
    }
    void AppendWord(uint16_t word) { Append(&word, sizeof word); }
    // Zero bytes up to a multiple of 4.
    void Align() {
        while (m_used % 4) {
            *Reserve(1) = 0;
            ++m_used;
        }
    }

    uint8_t* Data() const { return m_data; }
    size_t Used() const { return m_used; }

private:
    // At least half as much again, so that a long template does not move with every part of it.
    void Grow(size_t needed) {
        size_t newCapacity = std::max(needed, m_capacity + m_capacity / 2);
        auto moved = static_cast<uint8_t*>(m_heap->Alloc(newCapacity + 1));
        memcpy(moved, m_data, m_used);
        m_heap->Free(m_data);
        m_data = moved;
        m_capacity = newCapacity;
    }

    IHeap* m_heap = Mem_DefaultHeap(0);
    uint8_t* m_data = nullptr;
    size_t m_used = 0;
    size_t m_capacity;
};

// What a pass does with the parts; a pass that leaves one out copies it.
class TemplatePass : public TemplateVisitor {
public:
    explicit TemplatePass(TemplateBytes dialog) : m_form(FormOf(dialog)), m_out(kUsualTemplate) {}

    // False, with what was written to be forgotten, when the template ends before its controls.
    // When it ends among these, the output holds, and counts, those that are whole.
    bool Run(TemplateBytes dialog) {
        TemplateWalk walk = WalkTemplate(dialog, *this);
        if (walk.hasHead && !walk.isWhole)
            SetWordAt(m_out.Data() + m_form.count, static_cast<uint16_t>(walk.controls));
        return walk.hasHead;
    }

    TemplateBytes Written() const { return {m_out.Data(), m_out.Used()}; }
    const TemplateForm& Form() const { return m_form; }

    void Head(TemplatePart part) override { Copy(part); }
    void Caption(TemplatePart text) override { Copy(text); }
    void Font(TemplatePart words, TemplatePart face) override { Copy(words), Copy(face); }
    void Control(unsigned index, const TemplateControl& control) final {
        m_out.Align();
        ControlHead(index, control.head);
        Copy(control.windowClass);
        Title(control);
        Copy(control.creation);
    }

protected:
    ~TemplatePass() = default;

    virtual void ControlHead(unsigned, TemplatePart part) { Copy(part); }
    virtual void Title(const TemplateControl& control) { Copy(control.title); }

    void Copy(TemplatePart part) { m_out.Append(part.data, part.size); }
    CDlgBuffer& Out() { return m_out; }

private:
    static constexpr size_t kUsualTemplate = 2048;  // bytes; most fit without growing

    const TemplateForm& m_form;
    CDlgBuffer m_out;
};

}  // namespace qx

#endif
