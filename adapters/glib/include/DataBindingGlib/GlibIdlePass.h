// SPDX-License-Identifier: Apache-2.0
/// GlibIdlePass delivers application events in GLib's main loop, one pass a frame.
///
/// Make it on the thread that runs the loop, before any thread starts to raise events, and end it
/// after all have stopped. Threads that raise events wake it, once a pass. The first event after a
/// pause is delivered at once. While events keep coming a pass runs once a frame, takes half of it
/// at most, and leaves the rest of the events to the next one; so windows go on answering, however
/// many come. Only one long call of a listener can still hold them up.
///
/// The pass is a source of the loop with the priority of input, before that of drawing. An idle
/// source would come after drawing, and a program that always has something to draw would deliver
/// nothing. Loops within loops, as of a modal dialogue, deliver too. Nothing is thrown into GLib. A
/// listener may end the pass.
///
///   GlibIdlePass pass;
///   g_application_run(application, argc, argv);
#pragma once

#include <chrono>
#include <memory>

#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBindingGlib/Export.h"

/// GLib's own name of its main context.
struct _GMainContext;

namespace DataBinding {

class DATABINDING_GLIB_API GlibIdlePass {
 public:
  /// Less than a millisecond counts as one, and no context means the default one. The priority is
  /// GLib's, and 0 is G_PRIORITY_DEFAULT.
  explicit GlibIdlePass(std::chrono::milliseconds frame = std::chrono::milliseconds(16),
                        int priority = 0, _GMainContext* context = nullptr);
  GlibIdlePass(const GlibIdlePass&) = delete;
  GlibIdlePass& operator=(const GlibIdlePass&) = delete;
  ~GlibIdlePass();

  /// Has the function called with the text of each exception that a listener, or what is joined to
  /// the pass, has thrown. Without one, or with null, GLib's log is given a warning. The function
  /// may end the pass; what it throws ends the program.
  void WhenFailed(const RepeatingCallback<void(const char* reason)>& callback);
  /// Returns the pass itself, to join OneWay to it and to hear of deliveries. It is not to be run
  /// by others than this object.
  [[nodiscard]] const IdlePass& Pass() const;

 private:
  class Source;
  std::shared_ptr<Source> source;
};

}  // namespace DataBinding
