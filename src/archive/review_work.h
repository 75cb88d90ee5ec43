#pragma once

#include "state/review_form.h"

namespace vardelin::archive {

// The form is busy, with the hourglass, whatever the work meets.
class ReviewWork {
public:
    explicit ReviewWork(state::frmVDStorage& form) : m_form(form)
    {
        m_form.busy = m_form.hourglass = true;
    }
    ReviewWork(const ReviewWork&) = delete;
    ReviewWork& operator=(const ReviewWork&) = delete;
    ~ReviewWork() { m_form.busy = m_form.hourglass = false; }

private:
    state::frmVDStorage& m_form;
};

} // namespace vardelin::archive
