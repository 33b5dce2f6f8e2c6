# bash completion for kvr: its subcommands, each one's options, and files where a file is asked.
_kvr()
{
    local cur prev ordenes opciones
    cur="${COMP_WORDS[COMP_CWORD]}"
    prev="${COMP_WORDS[COMP_CWORD-1]}"
    ordenes="mensaje entrada clave formulario visor progreso calculadora telefonos impresora ayuda tabla letras nif"
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W "$ordenes --help --version" -- "$cur"))
        return
    fi
    case "$prev" in
        --ayuda|--importar|--exportar) COMPREPLY=($(compgen -f -- "$cur")); return ;;
        --moneda) COMPREPLY=($(compgen -W "EUR ESP" -- "$cur")); return ;;
        --icono) COMPREPLY=($(compgen -W "1 2 3 4 5 6 7 8 9 10" -- "$cur")); return ;;
        --botones) COMPREPLY=($(compgen -W "1 2 3 4 5 6" -- "$cur")); return ;;
        --omision) COMPREPLY=($(compgen -W "1 2 3" -- "$cur")); return ;;
        --titulo|--tag|--inicial|--lista|--separador|--titulos|--columna|--total|--timeout) return ;;
        --campo|--longitud|--ancho|--alto) return ;;
    esac
    case "${COMP_WORDS[1]}" in
        mensaje) opciones="--titulo --icono --botones --omision" ;;
        entrada) opciones="--tag --inicial --lista --separador --ayuda --titulo --icono" ;;
        clave) opciones="--titulo --longitud --icono" ;;
        formulario) opciones="--campo --separador --titulo --ancho --alto" ;;
        visor) opciones="--titulos --columna --titulo --icono" ;;
        progreso) opciones="--total --titulo" ;;
        impresora) opciones="--apaisado" ;;
        tabla) opciones="--titulos --tag --ancho --alto" ;;
        calculadora) opciones="--ancho --alto" ;;
        telefonos) opciones="--ancho --alto --importar --exportar" ;;
        ayuda) opciones="--titulo --ancho --alto" ;;
        letras) opciones="--moneda --numero" ;;
    esac
    case "${COMP_WORDS[1]}" in
        letras|nif) ;;
        *) opciones="$opciones --timeout" ;;
    esac
    if [[ "$cur" == -* ]]; then
        COMPREPLY=($(compgen -W "$opciones --help" -- "$cur"))
    elif [[ "${COMP_WORDS[1]}" == ayuda || "${COMP_WORDS[1]}" == tabla ]]; then
        COMPREPLY=($(compgen -f -- "$cur"))
    fi
}
complete -F _kvr kvr
