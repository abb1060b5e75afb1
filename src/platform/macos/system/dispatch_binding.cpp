// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <dispatch/dispatch.h>

#include "platform/macos/readers/dispatch_pressure_source.hpp"

namespace tarn::macos {

namespace {

dispatch_queue_t queueOf(void* queue) {
  return static_cast<dispatch_queue_t>(queue);
}

dispatch_source_t sourceOf(void* source) {
  return static_cast<dispatch_source_t>(source);
}

void* createQueue(const char* label) {
  return dispatch_queue_create(
      label, dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0));
}

void* createPressureSource(unsigned long levels, void* queue) {
  return dispatch_source_create(DISPATCH_SOURCE_TYPE_MEMORYPRESSURE, 0, levels, queueOf(queue));
}

void setHandler(void* source, void* context, void (*handler)(void*)) {
  dispatch_set_context(sourceOf(source), context);
  dispatch_source_set_event_handler_f(sourceOf(source), handler);
}

// The levels that the source is asked for as numbers.
static_assert((DISPATCH_MEMORYPRESSURE_NORMAL | DISPATCH_MEMORYPRESSURE_WARN |
               DISPATCH_MEMORYPRESSURE_CRITICAL) == 7);
static_assert(DISPATCH_MEMORYPRESSURE_WARN == 2 && DISPATCH_MEMORYPRESSURE_CRITICAL == 4);

}  // namespace

const DispatchFunctions& dispatchFunctions() {
  static const DispatchFunctions functions = {
      .createQueue = createQueue,
      .createPressureSource = createPressureSource,
      .setHandler = setHandler,
      .resume = [](void* source) { dispatch_resume(sourceOf(source)); },
      .pendingLevels = [](void* source) -> unsigned long {
        return dispatch_source_get_data(sourceOf(source));
      },
      .cancel = [](void* source) { dispatch_source_cancel(sourceOf(source)); },
      .waitFor = [](void* queue) { dispatch_sync_f(queueOf(queue), nullptr, [](void*) {}); },
      .release = [](void* object) { dispatch_release(static_cast<dispatch_object_t>(queueOf(object))); }};
  return functions;
}

}  // namespace tarn::macos
