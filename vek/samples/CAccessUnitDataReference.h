#pragma once

// One codec access unit (a coded picture or audio frame) held until its
// bytes have been used: Unlock releases the unit, so the reference serves
// one Lock/Unlock pair and then holds nothing.
#include <vek/core/CByteArray.h>
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CAccessUnitDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("audr") };

    // Shares `unit` (may be null: nothing to lock).
    explicit CAccessUnitDataReference(CByteArray* unit);

    bool HasUnit() const { return m_unit != nullptr; }
    // -19010 once the unit was released (or when there never was one),
    // -19002 when the unit cannot make its memory.
    int Lock(unsigned char*& data, int32_t& length) override;
    // Releases the unit.
    int Unlock() override;

protected:
    ~CAccessUnitDataReference() override;

private:
    RObject<CByteArray> m_unit;
};

} // namespace Quorvex::Vek
