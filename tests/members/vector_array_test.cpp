// Vectors as automation arrays.
#include <limits>

#include "frame/element_value.h"
#include "frame/interface/host_services.h"
#include "matrix_fixture.h"
#include "platform/automation.h"
#include "text_fixture.h"

namespace vela::testing {
namespace {

template <class... Args>
Result CallForVariant(const ObjectRef& vector, const ObjectRef& variant, const char* name,
                      const Args&... args) {
  CTypeBase* owner = nullptr;
  const CClassMember* row = vector->FindMember(name, 0, &owner, 0);
  CallFrame frame;
  frame.SetReturnObject(variant.Get());
  (AddArgument(frame, args), ...);
  return Collect(frame, owner->DoMethod(row->GetHandler(), &frame));
}

const VARIANT& ValueIn(const ObjectRef& variant) { return *variant->GetVariantAddress(nullptr); }

const SAFEARRAY& ArrayIn(const ObjectRef& variant) {
  EXPECT_TRUE(ValueIn(variant).vt & VT_ARRAY);
  return *ValueIn(variant).parray;
}

// The bounds of a dimension, counted from 0; the record keeps the last dimension first.
const SAFEARRAYBOUND& Bound(const SAFEARRAY& array, int dimension) {
  return array.rgsabound[array.cDims - 1 - dimension];
}

TEST(Array, OneDimensionOfEveryType) {
  ForEachElementType([]<class T>() {
    const std::vector<T> elements = {ConvertValue<T>(1.5), ConvertValue<T>(-2.0),
                                     ConvertValue<T>(100.0)};
    const ObjectRef v = VectorOf<T>(elements);
    const ObjectRef variant = Make(kTypeVariant);
    for (const char* name : {"GetAs1DArray", "GetDataAsOneDimensionalArray"}) {
      SCOPED_TRACE(std::string(name) + " " + kElement<T>.name);
      const Result result = CallForVariant(v, variant, name, -3);
      if constexpr (!SimpleElement<T>) {
        EXPECT_EQ(result.status, status::kUnsupported);
      } else {
        ASSERT_EQ(result.status, status::kOk);
        EXPECT_EQ(ValueIn(variant).vt,
                  VT_ARRAY | GetVariantTypeFromSimpleType(kElement<T>.type_id));
        const SAFEARRAY& array = ArrayIn(variant);
        EXPECT_EQ(array.cDims, 1);
        EXPECT_EQ(array.cLocks, 0u);
        EXPECT_EQ(array.cbElements, sizeof(T));
        EXPECT_EQ(Bound(array, 0).cElements, 3u);
        EXPECT_EQ(Bound(array, 0).lLbound, -3);
        EXPECT_EQ(std::memcmp(array.pvData, elements.data(), 3 * sizeof(T)), 0);
      }
    }
  });
}

TEST(Array, OfVariants) {
  const ObjectRef v = VectorOf<short>({7, -8});
  const ObjectRef variant = Make(kTypeVariant);
  ASSERT_EQ(CallForVariant(v, variant, "GetDataAsOneDimensionalArrayOfVariants").status, 0);
  EXPECT_EQ(ValueIn(variant).vt, VT_ARRAY | VT_VARIANT);
  const auto* cells = static_cast<const VARIANT*>(ArrayIn(variant).pvData);
  EXPECT_EQ(Bound(ArrayIn(variant), 0).lLbound, 0);
  EXPECT_EQ(cells[1].vt, VT_I2);
  EXPECT_EQ(cells[1].iVal, -8);
}

TEST(Array, TwoDimensionsFilledRowByRow) {
  const ObjectRef variant = Make(kTypeVariant);
  for (const int columns : {1, 2, 3, 7, 9}) {
    std::vector<double> elements;
    for (int i = 0; i < 7; ++i) elements.push_back(i + 1);
    const ObjectRef v = VectorOf<double>(elements);
    const auto rows = static_cast<unsigned>((7 + columns - 1) / columns);
    for (const int variants : {0, 1}) {
      ASSERT_EQ(CallForVariant(v, variant, "GetAs2DArray", columns, variants).status, 0);
      const SAFEARRAY& array = ArrayIn(variant);
      ASSERT_EQ(array.cDims, 2);
      EXPECT_EQ(Bound(array, 0).cElements, rows);
      EXPECT_EQ(Bound(array, 1).cElements, static_cast<unsigned>(columns));
      for (unsigned k = 0; k < rows * static_cast<unsigned>(columns); ++k) {
        const std::size_t i = static_cast<unsigned>(columns) * (k % rows) + k / rows;
        const double expected = i < 7 ? elements[i] : 0;
        if (variants != 0) {
          const VARIANT& cell = static_cast<const VARIANT*>(array.pvData)[k];
          EXPECT_EQ(cell.vt, i < 7 ? VT_R8 : VT_EMPTY);
          EXPECT_EQ(i < 7 ? cell.dblVal : 0, expected);
        } else {
          EXPECT_EQ(static_cast<const double*>(array.pvData)[k], expected) << columns << ' ' << k;
        }
      }
    }
  }
}

TEST(Array, OfTexts) {
  const Texts texts = {"a", "", "\xC3\xA9\xFFz", "d", "e"};
  const std::u16string expected[] = {u"a", u"", u"\u00E9\uFFFDz", u"d", u"e"};
  const ObjectRef array = ArrayOf(texts);
  const ObjectRef variant = Make(kTypeVariant);
  const auto text_of = [](const OLECHAR* text) {
    return std::u16string(reinterpret_cast<const char16_t*>(text));
  };
  for (const char* name : {"GetAs1DArray", "GetDataAsOneDimensionalArray"}) {
    ASSERT_EQ(CallForVariant(array, variant, name, 2).status, 0);
    EXPECT_EQ(ValueIn(variant).vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(Bound(ArrayIn(variant), 0).lLbound, 2);
    ASSERT_EQ(Bound(ArrayIn(variant), 0).cElements, 5u);
    const auto* cells = static_cast<const BSTR*>(ArrayIn(variant).pvData);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(text_of(cells[i]), expected[i]);
  }
  ASSERT_EQ(CallForVariant(array, variant, "GetAs2DArray", 2, 0).status, 0);
  const auto* cells = static_cast<const BSTR*>(ArrayIn(variant).pvData);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(text_of(cells[i % 2 * 3 + i / 2]), expected[i]);
  EXPECT_EQ(cells[5], nullptr) << "what the texts do not fill";
  ASSERT_EQ(CallForVariant(array, variant, "GetAs2DArray", 2, 1).status, 0);
  const auto* variants = static_cast<const VARIANT*>(ArrayIn(variant).pvData);
  EXPECT_EQ(variants[1].vt, VT_BSTR);
  EXPECT_EQ(text_of(variants[1].bstrVal), expected[2]);
  EXPECT_EQ(variants[5].vt, VT_EMPTY);
  EXPECT_EQ(CallForVariant(array, variant, "GetAs2DArray", 0, 0).status, status::kBadValue);
  EXPECT_EQ(Call(array, "GetAs1DArray").status, status::kFailed) << "nowhere to put it";
}

TEST(Array, EdgesAndRefusals) {
  const ObjectRef variant = Make(kTypeVariant);
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  EXPECT_EQ(Call(v, "GetAs1DArray", 0).status, status::kFailed);
  EXPECT_EQ(CallForVariant(v, v, "GetAs1DArray", 0).status, status::kFailed);
  const int kMax = std::numeric_limits<int>::max();
  ASSERT_EQ(CallForVariant(v, variant, "GetAs1DArray", kMax - 2).status, 0);
  EXPECT_EQ(CallForVariant(v, variant, "GetAs1DArray", kMax - 1).status, status::kArrayFailed);
  for (const int columns : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(CallForVariant(v, variant, "GetAs2DArray", columns, 0).status, status::kBadValue);
  }
  EXPECT_EQ(CallForVariant(v, variant, "GetAs2DArray", kMax, 0).status, status::kArrayFailed);
  EXPECT_EQ(CallForVariant(v, variant, "GetAs2DArray", kMax, 1).status, status::kArrayFailed);
  EXPECT_TRUE(ValueIn(variant).vt & VT_ARRAY) << "a failure keeps the result as it was";
  EXPECT_EQ(CallForVariant(VectorOf<double>({}), variant, "GetAs2DArray", 0, 0).status,
            status::kBadValue);
  EXPECT_EQ(CallForVariant(VectorOf<double>({}), variant, "GetAs1DArray").status, status::kOk);
  EXPECT_EQ(ValueIn(variant).vt, VT_EMPTY);
}

TEST(Array, MatrixThereAndBack) {
  const Rows rows = {{1, -2, 3}, {4, 5, -128}};
  const ObjectRef variant = Make(kTypeVariant);
  for (const int variants : {0, 1}) {
    ForEachElementType([&]<class T>() {
      if constexpr (DatasetElement<T> && SimpleElement<T>) {
        const ObjectRef m = MatrixOf<T>(rows);
        EXPECT_EQ(CallForVariant(m, variant, "GetAs2DArray", variants).status, 0);
        EXPECT_EQ(ArrayIn(variant).cDims, 2);
        const ObjectRef back = EmptyMatrix();
        EXPECT_EQ(Call(back, "SetByArrayInVariant", variant).Int(), 1) << kElement<T>.name;
        ExpectRows(back, RowsOf(m));
      }
    });
  }
  EXPECT_EQ(CallForVariant(VectorOf<short>({7, -8}), variant, "GetAs1DArray", 5).status, 0);
  const ObjectRef m = MatrixOf<double>({{1}, {2}});
  EXPECT_EQ(Call(m, "SetByArrayInVariant", variant).Int(), 1);
  ExpectRows(m, {{7, -8}});
  EXPECT_EQ(CallForVariant(EmptyMatrix(), variant, "GetAs2DArray").status, 0);
  EXPECT_EQ(ValueIn(variant).vt, VT_EMPTY);
  EXPECT_EQ(Call(m, "SetByArrayInVariant", variant).Int(), 0);
  EXPECT_EQ(Call(m, "SetByArrayInVariant", m).status, status::kBadArguments);
  EXPECT_EQ(Call(m, "SetByArrayInVariant", Null()).status, status::kBadArguments);
  EXPECT_EQ(CallForVariant(MatrixOf<OneTCcomplex>(rows), variant, "GetAs2DArray").status,
            status::kUnsupported);
}

}  // namespace
}  // namespace vela::testing
