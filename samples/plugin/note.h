// What the plug-in offers to hosts: a note that can be made by name and saved with a document.
//
//     RegisterObject("SampleNote", "plugin.dll");
//     IQXUnknown* object;
//     if (CreateObject("SampleNote", nullptr, qx_typeid<INote>(), &object)) {
//         INote* note = static_cast<INote*>(object);
//         note->SetText("Call back on Monday");
//         WriteObjectToXStream(stream, note);
//         note->Release();
//     }
#ifndef SAMPLES_PLUGIN_NOTE_H
#define SAMPLES_PLUGIN_NOTE_H

#include <qxcore/persist.h>

struct INote : IPersistXStream {
    // The note's own text, valid until SetText, Load or its end.
    virtual const char* GetText() = 0;
    virtual void SetText(const char* text) = 0;

protected:
    ~INote() = default;
};
QX_DECLARE_TYPEID(INote, ".?AUINote@@");

#endif
