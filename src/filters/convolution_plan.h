// What a matrix is made into for the row routines of convolution.
#pragma once

#include "core/heap.h"
#include "engine/window.h"
#include "filters/convolution_rows.h"

namespace zel {

struct ConvolutionPlan {
  WorkArray<ConvolutionTap> taps;
  WorkArray<ConvolutionTerm> terms;
  ConvolutionRule rule{};
  bool isFractional = false;
  bool hasFactors = false;
  ConvolutionFactors factors{};
  WorkArray<ConvolutionTap> factorTaps;
  WorkArray<ConvolutionTerm> factorTerms;
  float lowest = 0, highest = 0;            // coefficients, and 0
  double negativeSum = 0, positiveSum = 0;  // of coefficients
};

// The number of a matrix's coefficients: 0 for sides below 1.
int64_t ConvolutionCount(const ConvolutionMatrix& matrix);

// STATUS_MEMORY_FULL.
Status ConvolutionPlanMake(const ConvolutionMatrix& matrix, int32_t type, ConvolutionPlan* plan);

// The routine for the images of a call with integer sums, and the one by factors, where the plan
// has them and sums of 16 bits do; of its results the columns behind the rule's wrappedColumns
// don't count.
struct ConvolutionRoutine {
  WindowRow<ConvolutionRule> row;
  ConvolutionDown down;
};
ConvolutionRoutine ConvolutionRoutineOf(const WindowViews& views, ConvolutionPlan* plan);

}  // namespace zel
