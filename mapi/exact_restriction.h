#pragma once

#include "support/owners.h"

/// The restriction of a table to the rows of which a property is exactly a value. The text that it is made of
/// must live as long as it does; it is not copied, for it points into itself.
class ExactRestriction {
  public:
    ExactRestriction(ULONG tag, const wchar_t* text) : ExactRestriction(tag) {
        m_value.Value.lpszW = const_cast<LPWSTR>(text);
    }
    ExactRestriction(ULONG tag, bool flag) : ExactRestriction(tag) {
        m_value.Value.b = static_cast<unsigned short>(flag ? TRUE : FALSE);
    }
    ExactRestriction(const ExactRestriction&) = delete;
    ExactRestriction& operator=(const ExactRestriction&) = delete;
    ~ExactRestriction() = default;

    [[nodiscard]] SRestriction* Get() noexcept { return &m_restriction; }

  private:
    explicit ExactRestriction(ULONG tag) {
        m_value.ulPropTag = tag;
        m_restriction.rt = RES_PROPERTY;
        m_restriction.res.resProperty.relop = RELOP_EQ;
        m_restriction.res.resProperty.ulPropTag = tag;
        m_restriction.res.resProperty.lpProp = &m_value;
    }

    SPropValue m_value{};
    SRestriction m_restriction{};
};
