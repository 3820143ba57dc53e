#pragma once

#include <string>

#include "landxml/detail/open_elements.h"
#include "landxml/detail/tin_collector.h"
#include "landxml/detail/tokenizer.h"
#include "standin_platform/crew.h"

namespace lvx::landxml::detail {

/// Reads the points (`points`) or faces of one surface out of the window into its collector: what stands inside <Pnts> or
/// <Faces>, up to and with the end tag. `name` is that element's name with its prefix. Most of a large drawing goes
/// through here: elements in their plain form are read at one glance, without a token; whatever is odd goes the slow way
/// of the tokenizer, which gives the same result and tells what is wrong. Odd elements become notes of the collector.
/// Long lists are read by all threads of `crew`; the result is the same for any number of them. Throws ReadError for what
/// isn't well-formed.
void scanTin(Input& in, Tokenizer& tokens, OpenElements& open, TinCollector& tin, standin_platform::Crew& crew,
             const std::string& name, bool points);

}  // namespace lvx::landxml::detail
