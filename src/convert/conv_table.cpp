// The default conversion table: 24 x 24 routines, row = source id, column = destination id.
//
// It is written below as cell groups by datatype row, one line per (sources, destinations,
// routine) cell group, and expanded at compile time. The character types 0, 2, 4, the binary
// types 1, 3, 5 and the exact numerics 16, 17 share rows and columns. The gaps are deliberate
// (no bit to money, dates only to text and varbinary, CS_LONG inconvertible, and so on).
//
// The table test holds the complete expected table by routine name and requires every cell.
#include <array>
#include <cstdint>

#include "comnlib/convert.h"

namespace comn {
namespace {

using Ids = uint32_t; // bit set of datatype ids
constexpr Ids id(int i) {
    return Ids{1} << i;
}
constexpr Ids CHARS = id(0) | id(2) | id(4);
constexpr Ids BINS = id(1) | id(3) | id(5);
constexpr Ids NUMS = id(16) | id(17);
constexpr Ids ALL_BUT_VOID = (Ids{1} << 23) - 1;

struct Cell {
    Ids src;
    Ids dst;
    ComConvFunc func;
};

// clang-format off
constexpr Cell kCells[] = {
    // Character sources.
    {CHARS, CHARS, comn_chartochar},      {CHARS, BINS, comn_chartobin},
    {CHARS, id(6), comn_chartoi1},        {CHARS, id(7), comn_chartoi2},
    {CHARS, id(8), comn_chartoi4},        {CHARS, id(9), comn_chartoflt4},
    {CHARS, id(10), comn_chartoflt8},     {CHARS, id(11), comn_chartobit},
    {CHARS, id(12), comn_chartodatetime}, {CHARS, id(13), comn_chartodate4},
    {CHARS, id(14), comn_chartomoney},    {CHARS, id(15), comn_chartomny4},
    {CHARS, NUMS, comn_chartonum},        {CHARS, id(18), comn_chartovarchar},
    {CHARS, id(19), comn_chartovarbin},   {CHARS, id(21) | id(22), comn_chartochar},
    // Binary sources.
    {BINS, CHARS, comn_bintochar},        {BINS, BINS, comn_bintobin},
    {BINS, id(6), comn_bintoi1},          {BINS, id(7), comn_bintoi2},
    {BINS, id(8), comn_bintoi4},          {BINS, id(9), comn_bintoflt4},
    {BINS, id(10), comn_bintoflt8},       {BINS, id(11), comn_bintobit},
    {BINS, id(12), comn_bintodatetime},   {BINS, id(13), comn_bintodate4},
    {BINS, id(14), comn_bintomoney},      {BINS, id(15), comn_bintomny4},
    {BINS, NUMS, comn_bintonum},          {BINS, id(18), comn_bintovarchar},
    {BINS, id(19), comn_bintovarbin},
    // Tinyint.
    {id(6), CHARS, comn_i1tochar},        {id(6), BINS, comn_i1tobin},
    {id(6), id(6), comn_i1toi1},                   {id(6), id(7), comn_i1toi2},
    {id(6), id(8), comn_i1toi4},                   {id(6), id(9), comn_i1toflt4},
    {id(6), id(10), comn_i1toflt8},                {id(6), id(11), comn_i1tobit},
    {id(6), id(14), comn_i1tomoney},               {id(6), id(15), comn_i1tomny4},
    {id(6), NUMS, comn_i1tonum},          {id(6), id(18), comn_i1tovarchar},
    {id(6), id(19), comn_i1tovarbin},
    // Smallint.
    {id(7), CHARS, comn_i2tochar},        {id(7), BINS, comn_i2tobin},
    {id(7), id(6), comn_i2toi1},                   {id(7), id(7), comn_i2toi2},
    {id(7), id(8), comn_i2toi4},                   {id(7), id(9), comn_i2toflt4},
    {id(7), id(10), comn_i2toflt8},                {id(7), id(11), comn_i2tobit},
    {id(7), id(14), comn_i2tomoney},               {id(7), id(15), comn_i2tomny4},
    {id(7), NUMS, comn_i2tonum},          {id(7), id(18), comn_i2tovarchar},
    {id(7), id(19), comn_i2tovarbin},
    // Int.
    {id(8), CHARS, comn_i4tochar},        {id(8), BINS, comn_i4tobin},
    {id(8), id(6), comn_i4toi1},                   {id(8), id(7), comn_i4toi2},
    {id(8), id(8), comn_i4toi4},                   {id(8), id(9), comn_i4toflt4},
    {id(8), id(10), comn_i4toflt8},                {id(8), id(11), comn_i4tobit},
    {id(8), id(14), comn_i4tomoney},               {id(8), id(15), comn_i4tomny4},
    {id(8), NUMS, comn_i4tonum},          {id(8), id(18), comn_i4tovarchar},
    {id(8), id(19), comn_i4tovarbin},
    // Real.
    {id(9), CHARS, comn_flt4tochar},      {id(9), BINS, comn_flt4tobin},
    {id(9), id(6), comn_flt4toi1},                 {id(9), id(7), comn_flt4toi2},
    {id(9), id(8), comn_flt4toi4},                 {id(9), id(9), comn_flt4toflt4},
    {id(9), id(10), comn_flt4toflt8},              {id(9), id(11), comn_flt4tobit},
    {id(9), id(14), comn_flt4tomoney},             {id(9), id(15), comn_flt4tomny4},
    {id(9), NUMS, comn_flt4tonum},        {id(9), id(18), comn_flt4tovarchar},
    {id(9), id(19), comn_flt4tovarbin},
    // Float.
    {id(10), CHARS, comn_flt8tochar},     {id(10), BINS, comn_flt8tobin},
    {id(10), id(6), comn_flt8toi1},                {id(10), id(7), comn_flt8toi2},
    {id(10), id(8), comn_flt8toi4},                {id(10), id(9), comn_flt8toflt4},
    {id(10), id(10), comn_flt8toflt8},             {id(10), id(11), comn_flt8tobit},
    {id(10), id(14), comn_flt8tomoney},            {id(10), id(15), comn_flt8tomny4},
    {id(10), NUMS, comn_flt8tonum},       {id(10), id(18), comn_flt8tovarchar},
    {id(10), id(19), comn_flt8tovarbin},
    // Bit: no money destinations.
    {id(11), CHARS, comn_bittochar},      {id(11), BINS, comn_bittobin},
    {id(11), id(6), comn_bittoi1},                 {id(11), id(7), comn_bittoi2},
    {id(11), id(8), comn_bittoi4},                 {id(11), id(9), comn_bittoflt4},
    {id(11), id(10), comn_bittoflt8},              {id(11), id(11), comn_bittobit},
    {id(11), NUMS, comn_bittonum},        {id(11), id(18), comn_bittovarchar},
    {id(11), id(19), comn_bittovarbin},
    // Datetime and datetime4: text, each other, varchar and varbinary only.
    {id(12), CHARS, comn_datetochar},     {id(12), id(12), comn_datetodate},
    {id(12), id(13), comn_datetodate4},   {id(12), id(18), comn_datetovarchar},
    {id(12), id(19), comn_datetovarbin},
    {id(13), CHARS, comn_date4tochar},    {id(13), id(12), comn_date4todate},
    {id(13), id(13), comn_date4todate4},  {id(13), id(18), comn_date4tovarchar},
    {id(13), id(19), comn_date4tovarbin},
    // Money.
    {id(14), CHARS, comn_moneytochar},    {id(14), BINS, comn_moneytobin},
    {id(14), id(6), comn_moneytoi1},               {id(14), id(7), comn_moneytoi2},
    {id(14), id(8), comn_moneytoi4},               {id(14), id(9), comn_moneytoflt4},
    {id(14), id(10), comn_moneytoflt8},            {id(14), id(11), comn_moneytobit},
    {id(14), id(14), comn_moneytomoney},           {id(14), id(15), comn_moneytomny4},
    {id(14), NUMS, comn_moneytonum},               {id(14), id(18), comn_moneytovarchar},
    {id(14), id(19), comn_moneytovarbin},
    // Money4.
    {id(15), CHARS, comn_mny4tochar},     {id(15), BINS, comn_mny4tobin},
    {id(15), id(6), comn_mny4toi1},                {id(15), id(7), comn_mny4toi2},
    {id(15), id(8), comn_mny4toi4},                {id(15), id(9), comn_mny4toflt4},
    {id(15), id(10), comn_mny4toflt8},             {id(15), id(11), comn_mny4tobit},
    {id(15), id(14), comn_mny4tomoney},            {id(15), id(15), comn_mny4tomny4},
    {id(15), NUMS, comn_mny4tonum},                {id(15), id(18), comn_mny4tovarchar},
    {id(15), id(19), comn_mny4tovarbin},
    // Numeric and decimal.
    {NUMS, CHARS, comn_numtochar},        {NUMS, BINS, comn_numtobin},
    {NUMS, id(6), comn_numtoi1},          {NUMS, id(7), comn_numtoi2},
    {NUMS, id(8), comn_numtoi4},          {NUMS, id(9), comn_numtoflt4},
    {NUMS, id(10), comn_numtoflt8},       {NUMS, id(11), comn_numtobit},
    {NUMS, id(14), comn_numtomoney},      {NUMS, id(15), comn_numtomny4},
    {NUMS, NUMS, comn_numtonum},                   {NUMS, id(18), comn_numtovarchar},
    {NUMS, id(19), comn_numtovarbin},
    // Varchar.
    {id(18), CHARS, comn_varchartochar},     {id(18), BINS, comn_varchartobin},
    {id(18), id(6), comn_varchartoi1},       {id(18), id(7), comn_varchartoi2},
    {id(18), id(8), comn_varchartoi4},       {id(18), id(9), comn_varchartoflt4},
    {id(18), id(10), comn_varchartoflt8},    {id(18), id(11), comn_varchartobit},
    {id(18), id(12), comn_varchartodatetime},{id(18), id(13), comn_varchartodate4},
    {id(18), id(14), comn_varchartomoney},   {id(18), id(15), comn_varchartomny4},
    {id(18), NUMS, comn_varchartonum},       {id(18), id(18), comn_varchartovarchar},
    {id(18), id(19), comn_varchartovarbin},  {id(18), id(21) | id(22), comn_varchartochar},
    // Varbinary.
    {id(19), CHARS, comn_varbintochar},      {id(19), BINS, comn_varbintobin},
    {id(19), id(6), comn_varbintoi1},        {id(19), id(7), comn_varbintoi2},
    {id(19), id(8), comn_varbintoi4},        {id(19), id(9), comn_varbintoflt4},
    {id(19), id(10), comn_varbintoflt8},     {id(19), id(11), comn_varbintobit},
    {id(19), id(12), comn_varbintodatetime}, {id(19), id(13), comn_varbintodate4},
    {id(19), id(14), comn_varbintomoney},    {id(19), id(15), comn_varbintomny4},
    {id(19), NUMS, comn_varbintonum},        {id(19), id(18), comn_varbintovarchar},
    {id(19), id(19), comn_varbintovarbin},
    // CS_LONG (20) has no conversions. Sensitivity and boundary: text only, and themselves.
    {id(21), CHARS | id(21), comn_chartochar}, {id(21), id(18), comn_chartovarchar},
    {id(22), CHARS | id(22), comn_chartochar}, {id(22), id(18), comn_chartovarchar},
    // Void: the destination's null value, or nothing at all for void itself.
    {id(23), ALL_BUT_VOID, comn_voidtoany},        {id(23), id(23), comn_voidtovoid},
};
// clang-format on

constexpr std::array<ComConvFunc, COMN_CONV_DIM * COMN_CONV_DIM> expand() {
    std::array<ComConvFunc, COMN_CONV_DIM * COMN_CONV_DIM> t{};
    for (const Cell &c : kCells)
        for (int s = 0; s < COMN_CONV_DIM; ++s)
            for (int d = 0; d < COMN_CONV_DIM; ++d)
                if ((c.src & id(s)) && (c.dst & id(d))) t[s * COMN_CONV_DIM + d] = c.func;
    return t;
}

} // namespace
} // namespace comn

constexpr auto kDefaultTable = comn::expand();

extern "C" {

// A C array cannot be initialised from a std::array, so the cells are listed by index:
// COMN_CELLS_64(i) is the 64 cells from i on, and nine of them make the table.
#define COMN_CELLS_4(i)                                                                            \
    kDefaultTable[i], kDefaultTable[i + 1], kDefaultTable[i + 2], kDefaultTable[i + 3]
#define COMN_CELLS_16(i)                                                                           \
    COMN_CELLS_4(i), COMN_CELLS_4(i + 4), COMN_CELLS_4(i + 8), COMN_CELLS_4(i + 12)
#define COMN_CELLS_64(i)                                                                           \
    COMN_CELLS_16(i), COMN_CELLS_16(i + 16), COMN_CELLS_16(i + 32), COMN_CELLS_16(i + 48)
static_assert(COMN_CONV_DIM * COMN_CONV_DIM == 9 * 64, "list every cell of the table below");
const ComConvFunc Com__cnvrt_array[COMN_CONV_DIM * COMN_CONV_DIM] = {
    COMN_CELLS_64(0),   COMN_CELLS_64(64),  COMN_CELLS_64(128),
    COMN_CELLS_64(192), COMN_CELLS_64(256), COMN_CELLS_64(320),
    COMN_CELLS_64(384), COMN_CELLS_64(448), COMN_CELLS_64(512),
};
#undef COMN_CELLS_64
#undef COMN_CELLS_16
#undef COMN_CELLS_4

COMN_API void com__get_ctbl(const ComConvFunc **table, uint32_t *dim) {
    if (table) *table = Com__cnvrt_array;
    if (dim) *dim = COMN_CONV_DIM;
}
}
