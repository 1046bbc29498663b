# Completion of tidebrook, tidebrook-today and feedlarkd for fish: the options that the help names.

function __tidebrook_options
    $argv[1] --help 2>/dev/null | string match --regex --all -- '--[a-z]+' | sort --unique
end

for program in tidebrook tidebrook-today feedlarkd
    complete --command $program --no-files --arguments "(__tidebrook_options $program)"
end
for program in tidebrook-today feedlarkd
    complete --command $program --long-option home --require-parameter \
        --arguments '(__fish_complete_directories (commandline --current-token))'
end
