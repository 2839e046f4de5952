// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle {

struct EncoderRequest::Data : QSharedData
{
    QString input;
    std::optional<int> inputChannels;
    QString output;
    bool isPaced = true;
    std::optional<double> duration;
};

EncoderRequest::EncoderRequest() : m_data(new Data) {}
EncoderRequest::EncoderRequest(const EncoderRequest &other) = default;
EncoderRequest &EncoderRequest::operator=(const EncoderRequest &other) = default;
EncoderRequest::~EncoderRequest() = default;

QString EncoderRequest::input() const
{
    return m_data->input;
}

void EncoderRequest::setInput(const QString &input)
{
    m_data->input = input;
}

std::optional<int> EncoderRequest::inputChannels() const
{
    return m_data->inputChannels;
}

void EncoderRequest::setInputChannels(std::optional<int> channels)
{
    m_data->inputChannels = channels;
}

QString EncoderRequest::output() const
{
    return m_data->output;
}

void EncoderRequest::setOutput(const QString &output)
{
    m_data->output = output;
}

bool EncoderRequest::isPaced() const
{
    return m_data->isPaced;
}

void EncoderRequest::setPaced(bool paced)
{
    m_data->isPaced = paced;
}

std::optional<double> EncoderRequest::duration() const
{
    return m_data->duration;
}

void EncoderRequest::setDuration(std::optional<double> seconds)
{
    m_data->duration = seconds;
}

} // namespace vantle
