#pragma once

#include <platform/qz_lwo/lwo_form.h>
#include <platform/qz_lwo/lwo_report.h>

#include <string_view>

// Tells, while the chunks go by, whether they belong to the item that is loaded: to a layer of its
// name, or to any layer when the name is empty. Data before the first layer have an empty name.
class LwoLayers {
  public:
    // Both are kept by reference.
    LwoLayers(LwoForm const& form, CoreString const& item_name)
        : m_form(form), m_item_name(item_name), m_is_chosen(item_name.is_empty()) {}

    // `chunk` begins a layer, for its identifier and the form's type.
    bool is_layer(LwoChunk const& chunk) const {
        return m_form.has_layers() && chunk.id == lwo_id("LAYR");
    }
    // Enters the layer that `chunk` begins; false when its data are refused.
    bool enter(LwoChunk const& chunk, LwoReport& report);

    bool is_chosen() const { return m_is_chosen; }
    // Some layer was chosen so far.
    bool is_found() const { return m_is_found || m_item_name.is_empty(); }

    // The layers of a checked form as one line for a message: names that are not empty, each once,
    // the first ones of very many.
    CoreString get_names() const;

  private:
    bool read_name(LwoChunk const& chunk, std::string_view& name) const;

    LwoForm const& m_form;
    CoreString const& m_item_name;
    bool m_is_chosen;
    bool m_is_found = false;
};
