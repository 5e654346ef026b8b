#pragma once

// Base of pooled objects (samples, metadata). When the count of a pooled
// object reaches zero it is not freed: its ReclaimCleanUp resets what must
// be reset and the object goes back to the pool it came from, buffers
// intact. An object whose pool is gone (or never set) is destroyed as usual.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class CPoolBase;

class VEK_API CPoolObject : public CObject {
protected:
    explicit CPoolObject(uint32_t type);
    ~CPoolObject() override;

    // Sets the owning pool (Acquired); an earlier pool is released.
    void Pool(CPoolBase* pool);
    // Called before the object goes back to its pool; reset content here.
    virtual void ReclaimCleanUp();

private:
    friend class CPoolBase;
    static bool Reclaim(CObject* object);

    RObject<CPoolBase> m_pool;
};

} // namespace Quorvex::Vek
