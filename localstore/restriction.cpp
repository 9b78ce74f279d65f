#include "localstore/restriction.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "localstore/failure.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

/// Restrictions inside one another.
constexpr int kDeepestRestriction = 64;

std::partial_ordering CompareFixed(PropertyType type, std::uint64_t left, std::uint64_t right) {
    switch (type) {
        case kTypeInteger16:
            return static_cast<std::int16_t>(left) <=> static_cast<std::int16_t>(right);
        case kTypeInteger32:
        case kTypeErrorCode:
            return static_cast<std::int32_t>(left) <=> static_cast<std::int32_t>(right);
        case kTypeInteger64:
        case kTypeCurrency:
            return static_cast<std::int64_t>(left) <=> static_cast<std::int64_t>(right);
        case kTypeBoolean:
            // Every value but 0 is true.
            return (left != 0) <=> (right != 0);
        case kTypeFloating32:
            return std::bit_cast<float>(static_cast<std::uint32_t>(left)) <=>
                   std::bit_cast<float>(static_cast<std::uint32_t>(right));
        case kTypeFloating64:
        case kTypeFloatingTime:
            return std::bit_cast<double>(left) <=> std::bit_cast<double>(right);
        default:
            return left <=> right;
    }
}

bool HoldsRelation(ULONG relation, std::partial_ordering order) {
    switch (relation) {
        case RELOP_LT:
            return std::is_lt(order);
        case RELOP_LE:
            return std::is_lteq(order);
        case RELOP_GT:
            return std::is_gt(order);
        case RELOP_GE:
            return std::is_gteq(order);
        case RELOP_EQ:
            return std::is_eq(order);
        default:
            return std::is_neq(order);
    }
}

/// The order of a string property of a row and a text. Unicode is compared as it is kept: a table asks this
/// of each of its rows.
std::partial_ordering CompareText(const Property& property, const PropertySource& row, const Text& text) {
    if (property.Type() == kTypeString8) {
        return DecodeText(property.Data(), row.CodePage()) <=> text;
    }
    const Bytes& bytes = property.Data();
    const std::size_t units = bytes.size() / 2;
    for (std::size_t i = 0; i < units && i < text.size(); ++i) {
        const auto unit = static_cast<wchar_t>(bytes[2 * i] | bytes[2 * i + 1] << 8U);
        if (unit != text[i]) {
            return unit <=> text[i];
        }
    }
    return units <=> text.size();
}

class PropertyCondition final : public Condition {
  public:
    PropertyCondition(ULONG relation, PropertyId id, Property value)
        : m_relation(relation), m_id(id), m_value(std::move(value)) {
        if (IsString(m_value.Type())) {
            m_text = TextOf(m_value, CP_ACP);
        }
    }
    [[nodiscard]] bool Holds(const PropertySource& row) const override {
        // A row without the property matches no relation, not even RELOP_NE.
        const std::optional<Property> property = row.Find(m_id);
        return property && HoldsRelation(m_relation, Compare(*property, row));
    }

  private:
    [[nodiscard]] std::partial_ordering Compare(const Property& property, const PropertySource& row) const {
        return m_text && IsString(property.Type()) ? CompareText(property, row, *m_text)
                                                   : CompareValues(property, m_value, CP_ACP);
    }

    ULONG m_relation;
    PropertyId m_id;
    Property m_value;
    /// The value as a text, if it is a string.
    std::optional<Text> m_text;
};

class ContentCondition final : public Condition {
  public:
    ContentCondition(ULONG fuzzyLevel, PropertyId id, Property value)
        : m_level(fuzzyLevel), m_id(id), m_value(std::move(value)) {}
    [[nodiscard]] bool Holds(const PropertySource& row) const override {
        const std::optional<Property> property = row.Find(m_id);
        if (!property) {
            return false;
        }
        if (IsString(property->Type()) && IsString(m_value.Type())) {
            return Matches(TextOf(*property, row.CodePage()), TextOf(m_value, CP_ACP));
        }
        return property->Type() == kTypeBinary && m_value.Type() == kTypeBinary &&
               MatchesAt(property->Data(), m_value.Data());
    }

  private:
    template<class Sequence>
    [[nodiscard]] bool MatchesAt(const Sequence& whole, const Sequence& part) const {
        switch (m_level & 0xFFFFU) {
            case FL_SUBSTRING:
                return std::search(whole.begin(), whole.end(), part.begin(), part.end()) != whole.end() ||
                       part.empty();
            case FL_PREFIX:
                return whole.size() >= part.size() && std::equal(part.begin(), part.end(), whole.begin());
            default:
                return whole == part;
        }
    }
    [[nodiscard]] bool Matches(const Text& whole, const Text& part) const {
        const bool anyCase = (m_level & static_cast<ULONG>(FL_IGNORECASE | FL_LOOSE)) != 0;
        return anyCase ? MatchesAt(UpperCase(whole), UpperCase(part)) : MatchesAt(whole, part);
    }
    static Text UpperCase(Text text) {
        CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
        return text;
    }

    ULONG m_level;
    PropertyId m_id;
    Property m_value;
};

class ExistCondition final : public Condition {
  public:
    explicit ExistCondition(PropertyId id) : m_id(id) {}
    [[nodiscard]] bool Holds(const PropertySource& row) const override { return row.Find(m_id).has_value(); }

  private:
    PropertyId m_id;
};

class NotCondition final : public Condition {
  public:
    explicit NotCondition(std::unique_ptr<const Condition> inner) : m_inner(std::move(inner)) {}
    [[nodiscard]] bool Holds(const PropertySource& row) const override { return !m_inner->Holds(row); }

  private:
    std::unique_ptr<const Condition> m_inner;
};

/// RES_AND, which ends with the first part that does not hold, or RES_OR, which ends with the first that
/// does.
class ListCondition final : public Condition {
  public:
    ListCondition(bool isAnd, std::vector<std::unique_ptr<const Condition>> parts)
        : m_isAnd(isAnd), m_parts(std::move(parts)) {}
    [[nodiscard]] bool Holds(const PropertySource& row) const override {
        const auto holds = [&row](const std::unique_ptr<const Condition>& part) { return part->Holds(row); };
        return m_isAnd ? std::all_of(m_parts.begin(), m_parts.end(), holds)
                       : std::any_of(m_parts.begin(), m_parts.end(), holds);
    }

  private:
    bool m_isAnd;
    std::vector<std::unique_ptr<const Condition>> m_parts;
};

/// What a restriction points to; ends the operation if that is nothing.
template<class Part>
const Part& Given(const Part* part) {
    if (part == nullptr) {
        throw StoreError(MAPI_E_INVALID_PARAMETER);
    }
    return *part;
}

Property ValueOf(const SPropValue* value) {
    HRESULT problem = S_OK;
    std::optional<Property> property = PropertyOfValue(Given(value), problem);
    Require(property.has_value(), MAPI_E_TOO_COMPLEX);
    return std::move(*property);
}

std::unique_ptr<const Condition> Take(const SRestriction* pointer, int depth);

std::unique_ptr<const Condition> TakeList(bool isAnd, ULONG count, const SRestriction* list, int depth) {
    Require(count == 0 || list != nullptr, MAPI_E_INVALID_PARAMETER);
    std::vector<std::unique_ptr<const Condition>> parts;
    for (ULONG i = 0; i < count; ++i) {
        parts.push_back(Take(&list[i], depth + 1));
    }
    return std::make_unique<ListCondition>(isAnd, std::move(parts));
}

std::unique_ptr<const Condition> Take(const SRestriction* pointer, int depth) {
    const SRestriction& restriction = Given(pointer);
    Require(depth < kDeepestRestriction, MAPI_E_TOO_COMPLEX);
    switch (restriction.rt) {
        case RES_AND:
            return TakeList(true, restriction.res.resAnd.cRes, restriction.res.resAnd.lpRes, depth);
        case RES_OR:
            return TakeList(false, restriction.res.resOr.cRes, restriction.res.resOr.lpRes, depth);
        case RES_NOT:
            return std::make_unique<NotCondition>(Take(restriction.res.resNot.lpRes, depth + 1));
        case RES_PROPERTY: {
            const SPropertyRestriction& one = restriction.res.resProperty;
            Require(one.relop <= RELOP_NE, MAPI_E_TOO_COMPLEX);
            return std::make_unique<PropertyCondition>(one.relop, IdOf(one.ulPropTag), ValueOf(one.lpProp));
        }
        case RES_CONTENT: {
            const SContentRestriction& one = restriction.res.resContent;
            Require((one.ulFuzzyLevel & 0xFFFFU) <= FL_PREFIX, MAPI_E_TOO_COMPLEX);
            return std::make_unique<ContentCondition>(one.ulFuzzyLevel, IdOf(one.ulPropTag),
                                                      ValueOf(one.lpProp));
        }
        case RES_EXIST:
            return std::make_unique<ExistCondition>(IdOf(restriction.res.resExist.ulPropTag));
        default:
            throw StoreError(MAPI_E_TOO_COMPLEX);
    }
}

}  // namespace

std::partial_ordering CompareValues(const Property& left, const Property& right, UINT codePage) {
    if (IsString(left.Type()) && IsString(right.Type())) {
        return TextOf(left, codePage) <=> TextOf(right, CP_ACP);
    }
    if (left.Type() != right.Type()) {
        return std::partial_ordering::unordered;
    }
    switch (ShapeOf(left.Type())) {
        case ValueShape::Fixed:
            return CompareFixed(left.Type(), left.fixed, right.fixed);
        case ValueShape::Variable:
            return left.Data() <=> right.Data();
        default:
            return left.SameValue(right) ? std::partial_ordering::equivalent
                                         : std::partial_ordering::unordered;
    }
}

std::unique_ptr<const Condition> ConditionOf(const SRestriction* restriction) {
    return Take(restriction, 0);
}

}  // namespace localstore
