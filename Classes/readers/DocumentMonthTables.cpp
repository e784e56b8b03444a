// English and German names of months: 32 rows. A word is compared with as much of a name as it has
// units, so that the order decides what a short one means: Mar is March and not Maerz.
#include "readers/DocumentMonths.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

constexpr DocumentMonth Months[] = {
    {u"January", 1},   {u"Januar", 1}, {u"Jan", 1},       {u"February", 2},  {u"Februar", 2},
    {u"Feb", 2},       {u"March", 3},  {u"Maerz", 3},     {u"M\u00e4rz", 3}, {u"Mar", 3},
    {u"April", 4},     {u"Apr", 4},    {u"May", 5},       {u"Mai", 5},       {u"June", 6},
    {u"Juni", 6},      {u"Jun", 6},    {u"July", 7},      {u"Juli", 7},      {u"Jul", 7},
    {u"August", 8},    {u"Aug", 8},    {u"September", 9}, {u"Sep", 9},       {u"October", 10},
    {u"Oktober", 10},  {u"Oct", 10},   {u"November", 11}, {u"Nov", 11},      {u"December", 12},
    {u"Dezember", 12}, {u"Dec", 12},
};
static_assert(std::size(Months) == 32);

// clang-format on

}  // namespace

std::span<const DocumentMonth> documentMonths() noexcept { return Months; }

}  // namespace velmo::detail
