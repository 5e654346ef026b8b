#pragma once

// The finding of an analyzer as text (plain, XML or JSON as the analyzer
// documents), set by the analyzer as it learns and handed out on request.
#include <vek/core/CString.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class AnalysisResult {
public:
    // Shares `text` (null clears the result).
    void Set(CString* text) { m_text = RObject<CString>::FromObject(text); }
    // A new reference to the text in `text`; 1 (and null) while there is none.
    int Get(CString*& text) const
    {
        text = m_text;
        if (!text)
            return 1;
        text->Acquire();
        return RESULT_OK;
    }

private:
    RObject<CString> m_text;
};

} // namespace Quorvex::Vek
