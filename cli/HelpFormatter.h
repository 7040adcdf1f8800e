#pragma once

#include <CLI/App.hpp>
#include <CLI/Formatter.hpp>

/// Help pages in Chinese, with columns that line up: a Chinese character is two columns wide and three bytes long.
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter();

    std::string make_option(const CLI::Option *option, bool isPositional) const override;
    std::string make_subcommand(const CLI::App *command) const override;
};
