// SPDX-License-Identifier: Apache-2.0
/// BindChoices fills a combo box with the rows of a list, by the names of its source, of the list
/// and of the field that is shown.
///
/// The list is looked for in the scope of the box and followed wherever it goes. When it changes,
/// the box is filled anew, once control has returned to the loop, and goes on to show what it
/// showed, as far as that is still there. What the user has typed stays, unless it is an entry that
/// is gone; then it is reverted. Bind joins the choice itself to a property: to one that is a text
/// by the entry, to a number by the place of the row. Each may be called first.
///
/// An entry whose getter throws is empty, and the failure handler (ListenerGuard.h) is told. Box
/// and list belong to one thread, that of the widgets.
///
///   Qt6::BindChoices(cityBox, L"Places", L"Cities", L"Name");
///   Qt6::Bind(cityBox, L"Person", L"City");
#pragma once

#include "DataBinding/foundation/String.h"
#include "DataBindingQt6/Export.h"

class QComboBox;

namespace DataBinding::Qt6 {

/// Fills the box from now on, in place of what it was filled with before. Ends with the box. A null
/// box is ignored.
DATABINDING_QT6_API void BindChoices(QComboBox* box, const VtrString& source, const VtrString& list,
                                     const VtrString& field, const VtrString& context = {});

}  // namespace DataBinding::Qt6
