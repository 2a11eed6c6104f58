/// \file
/// Keyers, run.
#include "keyauto/trial.h"

#include <vfil/error.h>

#include <algorithm>
#include <stdexcept>

namespace vfil::keyauto {

namespace {

const catalogue::Entry& EntryOfKeyer(const std::string& name)
{
    const catalogue::Entry* entry = catalogue::Find(name);
    if (entry == nullptr) throw std::runtime_error("no keyer has the name '" + name + "'");
    return *entry;
}

} // namespace

Trial::Trial(const std::string& keyer, host::PicturePtr picture)
    : m_entry(EntryOfKeyer(keyer)), m_picture(std::move(picture)),
      m_output(host::Picture::Create(PXFormat_RGBA32, m_picture->Width(), m_picture->Height())),
      m_operator(m_entry.make(true))
{
    m_operator->SetInput(0, m_picture.Get());
    m_operator->SetInput(1, m_picture.Get());
    m_operator->SetOutput(0, m_output.Get());
    m_operator->Processor().SetProcessingMode(m_entry.channels);
}

const host::PicturePtr& Trial::Run(const Settings& settings)
{
    vfILProcessor& processor = m_operator->Processor();
    for (const auto& [name, value] : settings) {
        const auto parameter =
            std::find_if(m_entry.parameters.begin(), m_entry.parameters.end(),
                         [&name = name](const catalogue::Parameter& p) { return p.name == name; });
        if (parameter == m_entry.parameters.end())
            throw std::runtime_error(m_entry.name + " has no parameter '" + name + "'");
        parameter->apply(processor, value);
    }
    if (processor.Verify() != VFIL_SUCCESS || processor.Execute() != VFIL_SUCCESS)
        throw std::runtime_error(m_entry.name + " refuses what was found for it");
    return m_output;
}

} // namespace vfil::keyauto
