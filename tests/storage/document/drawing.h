// A document as a program would keep it: objects of a class of its own, in streams of sub-storages.
#ifndef QXCORE_TESTS_STORAGE_DRAWING_H
#define QXCORE_TESTS_STORAGE_DRAWING_H

#include <qxcore.h>

#include <string>
#include <vector>

// One object. Its payload uses each kind of operation that a stream has.
class CShape final : public CQXUnknownImpl<IPersistXStream> {
public:
    explicit CShape(int number = 0) : number(number) {}

    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        return QXAnswerQuery(id == qx_typeid<IPersistX>() ? this : nullptr, out);
    }
    const char* GetClassName() override { return "QxTestShape"; }
    unsigned GetSizeMax() override { return 64; }
    void Save(IXStream* stream) override {
        stream->WriteLong(number);
        stream->WriteShort(static_cast<unsigned short>(number));
        stream->WriteByte(static_cast<unsigned char>(number));
        stream->WriteDouble(number / 4.0);
        stream->WriteString(("shape " + std::to_string(number)).c_str());
        CQXVariant label(("label " + std::to_string(number)).c_str());
        stream->WriteVariant(&label);
        stream->Write(&number, sizeof number);
    }
    void Load(IXStream* stream) override {
        number = static_cast<int>(stream->ReadLong());
        stream->ReadShort();
        stream->ReadByte();
        stream->ReadDouble();
        char name[40];
        stream->ReadString(name, sizeof name - 2);
        CQXVariant label;
        stream->ReadVariant(&label);
        int again = 0;
        stream->Read(&again, sizeof again);
        if (label.type != QXVT_STRING || again != number) number = -1;
    }

    int number;
};

QX_CREATOR(QxTestShape);

struct Drawing {
    int layers;          // sub-storages, each with one stream
    int shapesPerLayer;  // objects in the stream
};

// Saves objects with the numbers from `first` on.
inline void SaveDrawing(IXStorage* document, const Drawing& drawing, int first) {
    int number = first;
    for (int layer = 0; layer < drawing.layers; ++layer) {
        std::string name = "layer " + std::to_string(layer);
        qx::Reference<IXStorage> folder(document->CreateStorage(name.c_str(), 0));
        qx::Reference<IXStream> stream(folder->CreateStream("shapes"));
        for (int i = 0; i < drawing.shapesPerLayer; ++i)
            WriteObjectToXStream(stream.Get(), qx::Make<CShape>(number++).Get());
    }
}

// The numbers of the objects that the document holds.
inline std::vector<int> LoadDrawing(IXStorage* document, const Drawing& drawing) {
    std::vector<int> numbers;
    for (int layer = 0; layer < drawing.layers; ++layer) {
        std::string name = "layer " + std::to_string(layer);
        qx::Reference<IXStorage> folder(document->OpenStorage(name.c_str()));
        qx::Reference<IXStream> stream(folder->OpenStream("shapes"));
        for (int i = 0; i < drawing.shapesPerLayer; ++i) {
            qx::Reference<IQXUnknown> object;
            ReadObjectFromXStream(stream.Get(), object.Receive());
            auto shape = qx::Ask<IPersistXStream>(object.Get());
            numbers.push_back(shape ? static_cast<CShape*>(shape.Get())->number : -1);
        }
    }
    return numbers;
}

inline std::vector<int> NumbersFrom(int first, const Drawing& drawing) {
    std::vector<int> numbers;
    for (int i = 0; i < drawing.layers * drawing.shapesPerLayer; ++i) numbers.push_back(first + i);
    return numbers;
}

#endif
